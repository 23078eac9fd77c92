#include "platform/UserDefaults.h"

#include "tests/support/TestHome.h"

#include <filesystem>
#include <string>

#include <gtest/gtest.h>

namespace platform {
namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

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

TEST_F(UserDefaultsTest, ReadTextsAsTheyStand) {
    test::writeFile(file_, "a= x = y \r\nempty=\na=2\nnot a line");
    EXPECT_EQ(defaults_.text("a"), " x = y ");
    EXPECT_EQ(defaults_.text("empty"), "");
    EXPECT_EQ(defaults_.text("not a line"), std::nullopt);
    EXPECT_EQ(defaults_.text("missing"), std::nullopt);
    EXPECT_EQ(defaults_.date("a"), std::nullopt);
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
        EXPECT_EQ(defaults.text("key"), std::nullopt) << home;
        EXPECT_EQ(defaults.setDate("key", moment_), reason) << home;
        EXPECT_EQ(defaults.lock().error(), reason) << home;
    }
}

TEST_F(UserDefaultsTest, AreLockedByOneAtATime) {
    {
        const FileLock first = defaults_.lock();
        EXPECT_EQ(first.error(), std::error_code());
        EXPECT_EQ(defaults_.lock().error(), std::errc::operation_would_block);
    }
    EXPECT_EQ(defaults_.lock().error(), std::error_code());
}

} // namespace
} // namespace platform
