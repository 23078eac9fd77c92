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
        ASSERT_TRUE(defaults_.setDate("key", moment_));
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
    for (const char* home : {"", "relative", "/dev/null", "/proc/no-such-home"}) {
        setenv("XDG_CONFIG_HOME", home, 1);
        setenv("HOME", home, 1);
        EXPECT_EQ(defaults_.text("key"), std::nullopt) << home;
        EXPECT_FALSE(defaults_.setDate("key", moment_)) << home;
        EXPECT_EQ(defaults_.lock().state(), FileLock::State::Unavailable) << home;
    }
}

TEST_F(UserDefaultsTest, AreLockedByOneAtATime) {
    {
        const FileLock first = defaults_.lock();
        EXPECT_EQ(first.state(), FileLock::State::Held);
        EXPECT_EQ(defaults_.lock().state(), FileLock::State::Taken);
    }
    EXPECT_EQ(defaults_.lock().state(), FileLock::State::Held);
}

} // namespace
} // namespace platform
