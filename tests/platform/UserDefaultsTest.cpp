#include "platform/UserDefaults.h"
#include "platform/File.h"
#include "platform/macos/AbsoluteTime.h"

#include "tests/support/Test.h"

#include <sys/stat.h>

namespace platform {
namespace {

namespace fs = std::filesystem;

class UserDefaultsTest : public testing::Test {
  protected:
    UserDefaultsTest() {
        setenv("XDG_CONFIG_HOME", (test::TestHome::path() / "config").c_str(), 1);
        fs::remove_all(file_.parent_path());
    }

    test::TestHome home_;
    UserDefaults defaults_{"com.example.test"};
    fs::path file_ = test::TestHome::path() / "config" / "com.example.test.conf";
    base::Timestamp moment_ = base::timestampFromText("2026-03-15T08:30:00.123456Z").value();
};

TEST_F(UserDefaultsTest, KeepADateAndAllOtherLines) {
    const std::pair<std::string, std::string> rows[] = {
        {"", "key=2026-03-15T08:30:00.123456Z\n"},
        {"other=1", "other=1\nkey=2026-03-15T08:30:00.123456Z\n"},
        {"# note\n\nkey=old\nkeyed=x\nkey=twice\n",
         "# note\n\nkey=2026-03-15T08:30:00.123456Z\nkeyed=x\nkey=twice\n"},
        {"a\xff\nkey=1780000000", "a\xff\nkey=2026-03-15T08:30:00.123456Z\n"},
    };
    for (const auto& [before, after] : rows) {
        test::writeFile(file_, before);
        ASSERT_EQ(defaults_.setDate("key", moment_), std::error_code());
        EXPECT_EQ(test::readFile(file_), after);
        EXPECT_EQ(defaults_.date("key"), moment_);
    }
    EXPECT_EQ(fs::status(file_).permissions(), fs::perms::owner_read | fs::perms::owner_write);
    EXPECT_FALSE(fs::exists(file_.native() + ".new"));
}

TEST(AbsoluteTime, BeginsIn2001) {
    const auto moment = base::timestampFromText("2001-01-01T00:00:01.500000Z").value();
    EXPECT_EQ(absoluteTime(moment), 1.5);
    EXPECT_EQ(timestampOf(1.5), moment);
    for (const double outside : {-978307201.0, 252423993600.0, std::nan("")}) {
        EXPECT_FALSE(timestampOf(outside)) << outside;
    }
}

TEST_F(UserDefaultsTest, ReadTextsWithoutBlanksAndWithAByteOrderMark) {
    constexpr std::size_t kLimit = 1U << 20U;
    test::writeFile(file_, "\xef\xbb\xbf"
                           "a\t = x = y \r\nempty=\na=2\nnot a line\n=\n; b = 1\n" +
                               std::string(kLimit - 54, ' ') + "last=1");
    const std::pair<const char*, std::optional<std::string>> rows[] = {
        {"a", "x = y"}, {"empty", ""},       {"not a line", std::nullopt},
        {"last", "1"},  {"b", std::nullopt}, {"missing", std::nullopt},
    };
    std::error_code error;
    for (const auto& [key, text] : rows) {
        EXPECT_EQ(defaults_.text(key, kLimit, error), text) << key;
        EXPECT_EQ(error, std::error_code()) << key;
    }
    EXPECT_EQ(defaults_.text("a", kLimit - 1, error), std::nullopt);
    EXPECT_EQ(error, std::errc::file_too_large);
    EXPECT_EQ(defaults_.date("a"), std::nullopt);
}

TEST_F(UserDefaultsTest, LeaveAloneWhatTheyCannotReadWhole) {
    const std::pair<std::function<void()>, std::errc> rows[] = {
        {[&] { fs::create_directory(file_); }, std::errc::not_supported},
        {[&] { ASSERT_EQ(mkfifo(file_.c_str(), 0600), 0); }, std::errc::not_supported},
        {[&] { fs::create_symlink(file_, file_); }, std::errc::too_many_symbolic_link_levels},
        {[&] { fs::create_symlink("nowhere", file_); }, std::errc::no_such_file_or_directory},
        {[&] { test::writeFile(file_, std::string(65537, '=')); }, std::errc::file_too_large},
    };
    for (const auto& [make, reason] : rows) {
        fs::remove_all(file_.parent_path());
        fs::create_directories(file_.parent_path());
        make();
        const auto type = fs::symlink_status(file_).type();
        EXPECT_EQ(defaults_.date("key"), std::nullopt);
        EXPECT_EQ(defaults_.setDate("key", moment_), reason);
        EXPECT_EQ(fs::symlink_status(file_).type(), type);
    }
    EXPECT_EQ(fs::file_size(file_), 65537U);
}

TEST_F(UserDefaultsTest, DoWithoutAHome) {
    const std::pair<const char*, std::errc> rows[] = {
        {"", std::errc::no_such_file_or_directory},
        {"relative", std::errc::no_such_file_or_directory},
        {"/dev/null", std::errc::not_a_directory},
        {"/proc/no-such-home", std::errc::no_such_file_or_directory},
    };
    for (const auto& [home, reason] : rows) {
        setenv("XDG_CONFIG_HOME", home, 1);
        setenv("HOME", home, 1);
        const UserDefaults defaults("com.example.test");
        std::error_code error;
        EXPECT_EQ(defaults.text("key", 100, error), std::nullopt) << home;
        EXPECT_EQ(error, std::error_code()) << home;
        EXPECT_EQ(defaults.setDate("key", moment_), reason) << home;
        EXPECT_EQ(defaults.lock().error(), reason) << home;
    }
}

TEST(File, TellsWhyItCannotBeRead) {
    const std::tuple<const char*, std::size_t, std::errc> rows[] = {
        {"/proc/self/mem", 100, std::errc::io_error}, // its first pages are unmapped
        {"/proc/self/cmdline", 1, std::errc::file_too_large},
    };
    for (const auto& [path, limit, reason] : rows) {
        std::error_code error;
        EXPECT_EQ(readRegularFile(path, limit, error), "");
        EXPECT_EQ(error, reason) << path;
    }
}

} // namespace
} // namespace platform
