#include "housekeeping/HelperUtilities.h"

#include "tests/support/Seams.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestHome.h"

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <string>
#include <thread>
#include <utility>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sys/stat.h>
#include <unistd.h>

namespace housekeeping {
namespace {

namespace fs = std::filesystem;
using test::TestHome;
using testing::HasSubstr;

class HelperUtilitiesTest : public testing::Test {
  protected:
    HelperUtilitiesTest() {
        fs::remove_all(bundle_.path());
        bundle_ = test::TestBundle(bundle_.path());
        bundle_.asMainBundle();
        fs::remove_all(copies_);
        fs::remove(ran_);
    }

    void configure(const std::string& uninstaller) const {
        bundle_.withResource("Configuration.strings",
                             "storeid = \" Acme \"; \"Application Uninstaller\" = \"" +
                                 uninstaller + "\";");
    }

    /// Launches and gives the result with what was logged.
    static std::pair<bool, std::string> launch() {
        testing::internal::CaptureStderr();
        const bool result = HelperUtilities::launchUninstaller();
        return {result, testing::internal::GetCapturedStderr()};
    }

    test::TestHome home_;
    test::TestBundle bundle_{TestHome::path() / "A 'quoted' \xc3\xbc.app"};
    fs::path copies_ = TestHome::temporaryDirectory();
    fs::path ran_ = TestHome::path() / "ran";
    std::string leaveNote_ = "echo \"$0\" > '" + ran_.native() + "'";
};

TEST_F(HelperUtilitiesTest, GiveTheStoreIdentifierAsItStands) {
    configure("");
    EXPECT_EQ(HelperUtilities::storeID(), " Acme ");
    bundle_.withResource("Configuration.strings", "storeid = \"\";");
    EXPECT_EQ(HelperUtilities::storeID(), "");
    bundle_.withResource("Configuration.strings", "other = x;");
    EXPECT_EQ(HelperUtilities::storeID(), "storeid");
    test::setExecutablePath("/usr/bin/true");
    EXPECT_EQ(HelperUtilities::storeID(), "storeid");
}

TEST_F(HelperUtilitiesTest, StartACopyOfTheUninstallerInPlaceOfAnEarlierOne) {
    configure("Remove It");
    bundle_.withScript("Remove It", leaveNote_);
    test::writeFile(copies_.parent_path() / "x", "");
    fs::create_directory(copies_);
    fs::permissions(copies_, fs::perms::owner_all);
    for (const bool earlierWasDirectory : {false, true}) {
        test::writeFile(copies_ / (earlierWasDirectory ? "Remove It/old" : "Remove It"), "old");
        const auto [result, log] = launch();
        EXPECT_TRUE(result);
        EXPECT_EQ(log, "");
        const std::string started = (copies_ / "Remove It").native() + "\n";
        ASSERT_EQ(test::readFileThatGets(ran_, started), started);
        EXPECT_EQ(test::readFile(copies_ / "Remove It"),
                  test::readFile(bundle_.executable("Remove It")));
        fs::remove_all(copies_ / "Remove It");
        fs::remove(ran_);
    }
}

TEST_F(HelperUtilitiesTest, StartACompiledProgram) {
    configure("true");
    fs::copy_file("/bin/true", bundle_.executable("true"));
    EXPECT_TRUE(launch().first);
}

TEST_F(HelperUtilitiesTest, DoNothingWithoutAnUninstaller) {
    configure("");
    EXPECT_EQ(launch(), std::pair(true, std::string()));
    EXPECT_FALSE(fs::exists(copies_));
}

TEST_F(HelperUtilitiesTest, SayWhichUninstallerIsNotThere) {
    const auto expectNotFound = [](const std::string& path) {
        const auto [result, log] = launch();
        EXPECT_FALSE(result);
        EXPECT_THAT(log, HasSubstr("Uninstaller is not found at path: " + path + "\n"));
    };
    bundle_.withResource("Configuration.strings", "storeid = x;"); // the key stands for itself
    expectNotFound("(null)");
    for (const char* name : {"missing", "..", "../Info.plist", "a/b"}) {
        configure(name);
        expectNotFound("(null)");
    }
    configure("dangling");
    fs::create_symlink("nowhere", bundle_.executable("dangling"));
    expectNotFound(bundle_.executable("dangling").native());
}

TEST_F(HelperUtilitiesTest, SayThatNoPlaceHasRoomForTheCopy) {
    configure("Large");
    bundle_.withScript("Large", "");
    fs::resize_file(bundle_.executable("Large"), std::uintmax_t{1} << 43U); // sparse
    const auto [result, log] = launch();
    EXPECT_FALSE(result);
    EXPECT_THAT(log, HasSubstr("There is no place from which a copy of the uninstaller can"));
}

TEST_F(HelperUtilitiesTest, LeaveNoHalfCopyAndLogNothingWhenCopyingFails) {
    configure("Uninstall.app");
    const test::TestBundle inner(bundle_.executable("Uninstall.app"));
    ASSERT_EQ(mkfifo((inner.path() / "Contents" / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(launch(), std::pair(false, std::string()));
    EXPECT_FALSE(fs::exists(copies_ / "Uninstall.app"));
}

/// What somebody could have put in the way: each at `path`, none of it ours.
void plant(int kind, const fs::path& path, const fs::path& victim) {
    std::error_code error;
    if (kind == 0) {
        fs::create_directory_symlink(victim, path, error);
    } else if (kind == 1) {
        fs::create_symlink("/no/such/place", path, error);
    } else if (kind == 2) {
        mkfifo(path.c_str(), 0600);
    } else if (kind == 3 && mkdir(path.c_str(), 0777) == 0) { // NOLINT: as others make it
        fs::permissions(path, fs::perms::all, error);
        fs::copy_file(victim / "Remove It", path / "Remove It", error);
    }
}

TEST_F(HelperUtilitiesTest, FollowAndStartNothingThatWasPutAtTheCopysPlace) {
    configure("Remove It");
    const auto ownRan = TestHome::path() / "own ran";
    bundle_.withScript("Remove It", "touch '" + ownRan.native() + "'");
    const auto victim = TestHome::path() / "victim";
    test::writeFile(victim / "Remove It", "#!/bin/sh\n" + leaveNote_ + "\n", true);
    fs::permissions(victim, fs::perms::owner_all);
    const std::string precious = test::readFile(victim / "Remove It");
    const auto own = test::readFile(bundle_.executable("Remove It"));
    // In place of the copy, in place of its directory, and the latter just when that is made.
    for (int round = 0; round < 60; ++round) {
        std::thread racer;
        if (round < 4) {
            fs::create_directory(copies_);
            fs::permissions(copies_, fs::perms::owner_all);
            plant(round, copies_ / "Remove It", victim);
        } else if (round < 8) {
            plant(round % 4, copies_, victim);
        } else {
            racer = std::thread([&, round] {
                usleep(static_cast<useconds_t>(round) * 20);
                plant(round % 4, copies_, victim);
            });
        }
        EXPECT_EQ(launch(), std::pair(true, std::string())) << round;
        if (racer.joinable()) {
            racer.join();
        }
        EXPECT_TRUE(test::appears(ownRan))
            << round; // before its script goes, which the shell reads
        fs::remove(ownRan);
        const auto next = copies_.native() + "-1"; // taken where the first was in the way
        EXPECT_EQ(
            test::readFile(fs::path(fs::exists(next) ? next : copies_.native()) / "Remove It"),
            own);
        ASSERT_EQ(test::readFile(victim / "Remove It"), precious) << round;
        fs::remove_all(copies_);
        fs::remove_all(next);
    }
    EXPECT_FALSE(fs::exists(ran_));
}

TEST_F(HelperUtilitiesTest, ReportThatACopyCannotBeStarted) {
    configure("noise.xyzzy");
    test::writeFile(bundle_.executable("noise.xyzzy"), "\x01\x02");
    EXPECT_EQ(launch(), std::pair(false, std::string()));
}

TEST_F(HelperUtilitiesTest, TrashABundleByItsPath) {
    for (const char* suffix : {"", "/"}) {
        const test::TestBundle other(TestHome::path() / "Other.app");
        EXPECT_TRUE(HelperUtilities::trash(other.path().native() + suffix));
        EXPECT_FALSE(fs::exists(other.path()));
    }
    EXPECT_TRUE(fs::exists(TestHome::trashedFile("Other.app")));
    for (const char* path : {"", "/", "/no/such/Thing.app"}) {
        EXPECT_FALSE(HelperUtilities::trash(path)) << path;
    }
}

TEST_F(HelperUtilitiesTest, ClearTheQuarantineMarkThroughTheShellUnescaped) {
    // A quote ends the quoted path, and the shell interprets the rest: kept as it is.
    const auto proof = TestHome::path() / "interpreted";
    HelperUtilities::clearQuarantineAttribute("/x'; touch '" + proof.native());
    EXPECT_TRUE(test::appears(proof));
}

} // namespace
} // namespace housekeeping
