#include "housekeeping/HelperUtilities.h"

#include "tests/support/Seams.h"
#include "tests/support/TestBundle.h"
#include "tests/support/TestHome.h"

#include <cstdlib>
#include <filesystem>
#include <string>
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
        ASSERT_TRUE(test::appears(ran_));
        EXPECT_EQ(test::readFile(copies_ / "Remove It"),
                  test::readFile(bundle_.executable("Remove It")));
        for (int round = 0; round < 100 && test::readFile(ran_).empty(); ++round) {
            usleep(10000);
        }
        EXPECT_EQ(test::readFile(ran_), (copies_ / "Remove It").native() + "\n");
        fs::remove_all(copies_ / "Remove It");
        fs::remove(ran_);
    }
}

TEST_F(HelperUtilitiesTest, CopyABundleWithItsLinksAndModes) {
    configure("Uninstall.app");
    const test::TestBundle inner(bundle_.executable("Uninstall.app"));
    inner.withScript("Uninstall", leaveNote_);
    test::writeFile(inner.path() / "Contents" / "Resources" / "data", "x");
    fs::create_symlink("data", inner.path() / "Contents" / "Resources" / "link");
    fs::create_symlink("/nowhere", inner.path() / "Contents" / "Resources" / "dangling");
    EXPECT_TRUE(launch().first);
    ASSERT_TRUE(test::appears(ran_));
    const auto resources = copies_ / "Uninstall.app" / "Contents" / "Resources";
    EXPECT_EQ(fs::read_symlink(resources / "link"), "data");
    EXPECT_EQ(fs::read_symlink(resources / "dangling"), "/nowhere");
    EXPECT_EQ(fs::status(copies_ / "Uninstall.app/Contents/Linux/Uninstall").permissions(),
              fs::perms::owner_all);
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

TEST_F(HelperUtilitiesTest, LeaveNoHalfCopyAndLogNothingWhenCopyingFails) {
    configure("Uninstall.app");
    const test::TestBundle inner(bundle_.executable("Uninstall.app"));
    ASSERT_EQ(mkfifo((inner.path() / "Contents" / "pipe").c_str(), 0600), 0);
    EXPECT_EQ(launch(), std::pair(false, std::string()));
    EXPECT_FALSE(fs::exists(copies_ / "Uninstall.app"));
}

TEST_F(HelperUtilitiesTest, UseNoTemporaryDirectoryThatIsNotTheUsersOwn) {
    configure("Remove It");
    bundle_.withScript("Remove It", leaveNote_);
    fs::create_directories(TestHome::path() / "planted");
    fs::permissions(TestHome::path() / "planted", fs::perms::owner_all);
    fs::create_directory_symlink(TestHome::path() / "planted", copies_);
    EXPECT_EQ(launch(), std::pair(false, std::string()));
    EXPECT_TRUE(fs::is_empty(TestHome::path() / "planted"));
    fs::remove(copies_);
}

TEST_F(HelperUtilitiesTest, ReplaceALinkAtTheCopysPlaceAndNotItsTarget) {
    configure("Remove It");
    bundle_.withScript("Remove It", leaveNote_);
    fs::create_directories(copies_);
    fs::permissions(copies_, fs::perms::owner_all);
    test::writeFile(TestHome::path() / "victim", "precious");
    fs::create_symlink(TestHome::path() / "victim", copies_ / "Remove It");
    EXPECT_TRUE(launch().first);
    EXPECT_FALSE(fs::is_symlink(copies_ / "Remove It"));
    EXPECT_EQ(test::readFile(TestHome::path() / "victim"), "precious");
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
