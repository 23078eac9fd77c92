#include "housekeeping/HelperUtilities.h"

#include "tests/support/Test.h"

#include <sys/stat.h>

namespace housekeeping {
namespace {

namespace fs = std::filesystem;
using test::TestHome;
using testing::HasSubstr;

class HelperUtilitiesTest : public testing::Test {
  protected:
    HelperUtilitiesTest() {
        bundle_.asMainBundle();
        fs::remove_all(copies_);
        fs::remove(ran_);
    }

    void configure(const std::string& uninstaller) const {
        bundle_.withResource("Configuration.strings",
                             "storeid = \" Acme \"; \"Application Uninstaller\" = \"" +
                                 uninstaller + "\";");
    }

    /// Launches the uninstaller and returns the result and the log.
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

TEST_F(HelperUtilitiesTest, TellHowALaunchEnded) {
    const std::string notFound = "Uninstaller is not found at path: ";
    fs::copy_file("/bin/true", bundle_.executable("true"));
    fs::create_symlink("nowhere", bundle_.executable("dangling"));
    bundle_.withScript("large", "");
    fs::resize_file(bundle_.executable("large"), std::uintmax_t{1} << 43U); // sparse
    test::writeFile(bundle_.executable("noise.xyzzy"), "\x01\x02");
    test::writeFile(bundle_.executable("no interpreter"), "#!/no/such\n", true);
    const test::TestBundle inner(bundle_.executable("pipe.app"));
    ASSERT_EQ(mkfifo((inner.path() / "Contents" / "pipe").c_str(), 0600), 0);
    const std::tuple<const char*, bool, std::string> rows[] = {
        {"", true, ""}, // the product lacks an uninstaller
        {"true", true, ""},
        {"missing", false, notFound + "(null)\n"},
        {"dangling", false, notFound + bundle_.executable("dangling").native() + "\n"},
        {"large", false,
         "Cannot copy the uninstaller " + bundle_.executable("large").native() +
             ": no directory allows execution and has enough space. Set TMPDIR to one that does\n"},
        {"pipe.app", false, ""}, // cannot be copied
        {"noise.xyzzy", false, ""},
        {"no interpreter", false, ""},
    };
    for (const auto& [name, result, log] : rows) {
        configure(name);
        fs::remove_all(copies_);
        const auto launched = launch();
        EXPECT_EQ(launched.first, result) << name;
        EXPECT_EQ(
            launched.second.substr(std::min(launched.second.find("] "), launched.second.size())),
            log.empty() ? "" : "] " + log);
        EXPECT_EQ(fs::exists(copies_ / name), *name == 't' || *name == 'n') << name;
    }
    bundle_.withResource("Configuration.strings", "storeid = x;"); // a missing key is its own value
    EXPECT_THAT(launch().second, HasSubstr(notFound + "(null)\n"));
}

TEST_F(HelperUtilitiesTest, StartACopyInPlaceOfWhateverIsThereAndFollowNothing) {
    configure("Remove It");
    bundle_.withScript("Remove It", leaveNote_);
    const auto victim = TestHome::path() / "victim";
    test::writeFile(victim / "Remove It", "precious");
    const auto copy = copies_ / "Remove It";
    const std::function<void()> plants[] = {
        [&] { test::writeFile(copy, "old"); },
        [&] { test::writeFile(copy / "old", "old"); },
        [&] { fs::create_directory_symlink(victim, copy); },
        [&] { fs::create_symlink("/no/such/place", copy); },
        [&] { ASSERT_EQ(mkfifo(copy.c_str(), 0600), 0); },
    };
    for (const auto& plant : plants) {
        fs::remove_all(copies_);
        fs::remove(ran_);
        fs::create_directories(copies_);
        fs::permissions(copies_, fs::perms::owner_all);
        plant();
        EXPECT_EQ(launch(), std::pair(true, std::string()));
        const std::string started = copy.native() + "\n";
        EXPECT_TRUE(test::becomesTrue([&] { return test::readFile(ran_) == started; }));
        EXPECT_EQ(test::readFile(copy), test::readFile(bundle_.executable("Remove It")));
        EXPECT_EQ(test::readFile(victim / "Remove It"), "precious");
    }
}

TEST_F(HelperUtilitiesTest, ClearTheQuarantineMarkThroughTheShellUnescaped) {
    // A quote in a path ends the quoted path, so the shell interprets the rest. This must stay.
    const auto words = (TestHome::path() / "words").native();
    HelperUtilities::clearQuarantineAttribute("/x'; tr '\\0' ' ' </proc/$$/cmdline >" + words +
                                              "; '");
    EXPECT_TRUE(test::becomesTrue([&] {
        const std::string read = test::readFile(words);
        return read.starts_with("/bin/sh -c /usr/bin/xattr -d com.apple.quarantine '/x';") &&
               read.ends_with("; '' &> /dev/null ");
    })) << test::readFile(words);
}

} // namespace
} // namespace housekeeping
