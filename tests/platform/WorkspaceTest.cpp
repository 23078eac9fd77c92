#include "platform/Workspace.h"

#include "platform/TemporaryDirectory.h"
#include "tests/support/HostileAddresses.h"
#include "tests/support/TestHome.h"

#include <csignal>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <unistd.h>

namespace platform {
namespace {

namespace fs = std::filesystem;
using test::TestHome;
using testing::HasSubstr;

class WorkspaceTest : public testing::Test {
  protected:
    test::TestHome home_;
    fs::path folder_ = TestHome::path() / "folder";
};

TEST_F(WorkspaceTest, RecyclesEntriesWithARestorePath) {
    const std::pair<std::string, std::string> rows[] = {
        {"plain.txt", "plain.txt"},
        {"a b'c%d\"e", "a%20b%27c%25d%22e"},
        {"line\nbreak", "line%0Abreak"},
        {"latin \xe9", "latin%20%E9"},
    };
    for (const auto& [name, encoded] : rows) {
        test::writeFile(folder_ / name, name);
        ASSERT_TRUE(workspace::recycle(folder_, name)) << name;
        EXPECT_FALSE(fs::exists(folder_ / name));
        EXPECT_EQ(test::readFile(TestHome::trashedFile(name)), name);
        EXPECT_THAT(TestHome::trashInfo(name), HasSubstr("/folder/" + encoded + "\n"));
    }
    // Too long for the name of its Trash entry: refused, whole.
    const std::string longest(255, 'n');
    test::writeFile(folder_ / longest, "x");
    EXPECT_FALSE(workspace::recycle(folder_, longest));
    EXPECT_TRUE(fs::exists(folder_ / longest));
}

TEST_F(WorkspaceTest, RecyclesALinkAndNotWhatItPointsTo) {
    test::writeFile(folder_ / "target", "x");
    fs::create_symlink(folder_ / "target", folder_ / "link");
    ASSERT_TRUE(workspace::recycle(folder_, "link"));
    EXPECT_TRUE(fs::is_symlink(TestHome::trashedFile("link")));
    EXPECT_TRUE(fs::exists(folder_ / "target"));
}

TEST_F(WorkspaceTest, RecyclesNothingButAnEntryOfTheDirectory) {
    test::writeFile(folder_ / "inner" / "file", "x");
    for (const char* name : {"", ".", "..", "/", "missing", "inner/file", "../work"}) {
        EXPECT_FALSE(workspace::recycle(folder_, name)) << name;
    }
    EXPECT_TRUE(fs::exists(folder_ / "inner" / "file"));
}

/// With an application of one's own for addresses.
class OpenedAddress : public WorkspaceTest {
  protected:
    OpenedAddress() {
        std::string defaults = "[Default Applications]\n";
        for (const char* scheme :
             {"http", "https", "file", "ftp", "mailto", "javascript", "data"}) {
            defaults += std::string("x-scheme-handler/") + scheme + "=opener.desktop\n";
        }
        test::writeFile(applications_ / "mimeapps.list", defaults);
        test::writeFile(applications_ / "opener.desktop",
                        "[Desktop Entry]\nType=Application\nName=Opener\nExec=" + opener_.native() +
                            " %u\n");
        fs::remove(opened_);
        setenv("DISPLAY", ":4711", 1); // xdg-open asks whether there is one
    }
    ~OpenedAddress() override {
        fs::remove_all(applications_);
        fs::remove_all(folder_);
        setenv("PATH", path_.c_str(), 1);
        unsetenv("DISPLAY");
    }

    void haveOpenerRun(const std::string& commands) const {
        test::writeFile(opener_, "#!/bin/sh\nopened='" + opened_.native() + "'\n" + commands, true);
    }

    fs::path applications_ = TestHome::path() / "data" / "applications";
    fs::path opener_ = folder_ / "opener";
    fs::path opened_ = folder_ / "opened";
    std::string path_ = std::getenv("PATH");
};

TEST_F(OpenedAddress, IsOfTheWebAndOneArgument) {
    haveOpenerRun("printf '%s|' \"$@\" >>\"$opened\"\n");
    testing::internal::CaptureStderr();
    for (const auto* address : test::kHostileAddresses) {
        EXPECT_FALSE(workspace::openURL(address)) << address;
    }
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("Not opened"));
    test::writeFile(folder_ / "no gio" / "gio", "#!/bin/sh\nexit 1\n", true);
    fs::create_directories(folder_ / "gio alone");
    fs::create_symlink("/usr/bin/gio", folder_ / "gio alone" / "gio");
    std::string expected;
    for (const std::string& path :
         {(folder_ / "no gio").native() + ":" + path_, (folder_ / "gio alone").native()}) {
        setenv("PATH", path.c_str(), 1);
        for (const std::string address :
             {"http://127.0.0.1:9/account/A?b=c&d='e'", "https://host/$(touch$IFS'x');id&#--help",
              "http://-h/%20%22%0a-h", "http://host/*?~!"}) {
            ASSERT_TRUE(workspace::openURL(address)) << address;
            expected += address + "|";
            ASSERT_EQ(test::readFileThatGets(opened_, expected), expected);
        }
    }
    setenv("PATH", folder_.c_str(), 1);
    testing::internal::CaptureStderr();
    EXPECT_FALSE(workspace::openURL("http://host/a"));
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("No browser could be started for http://host/a\n"));
}

TEST_F(OpenedAddress, StartsAProgramOnItsOwnLikeAFile) {
    // Beyond 31 there are signals that the C library keeps for itself.
    haveOpenerRun("streams=$(readlink /proc/$$/fd/0 /proc/$$/fd/1 /proc/$$/fd/2)\n"
                  "signals() { echo $((0x$(grep $1 /proc/$$/status | cut -f2) & 0x7fffffff)); }\n"
                  "{ echo $streams $(signals SigBlk) $(signals SigIgn); env | grep ^LD_\n"
                  "[ -e /proc/$$/fd/200 ] && echo inherits\n"
                  "[ $(cut -d' ' -f6 /proc/$$/stat) = " +
                  std::to_string(getsid(0)) +
                  " ] && echo same session; } >\"$opened.new\"\n"
                  "mv \"$opened.new\" \"$opened\"\n");
    ASSERT_EQ(dup2(STDERR_FILENO, 200), 200);
    setenv("LD_LIBRARY_PATH", "/nowhere", 1);
    auto* const handler = std::signal(SIGPIPE, SIG_IGN);
    sigset_t blocked;
    sigemptyset(&blocked);
    sigaddset(&blocked, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &blocked, nullptr);
    for (const bool isFile : {true, false}) {
        fs::remove(opened_);
        EXPECT_TRUE(isFile ? workspace::openFile(opener_) : workspace::openURL("http://host/"));
        EXPECT_TRUE(test::appears(opened_));
        EXPECT_EQ(test::readFile(opened_), "/dev/null /dev/null /dev/null 0 0\n") << isFile;
    }
    pthread_sigmask(SIG_UNBLOCK, &blocked, nullptr);
    std::signal(SIGPIPE, handler);
    unsetenv("LD_LIBRARY_PATH");
    close(200);
}

TEST_F(WorkspaceTest, OpensNothingThatCannotBeStarted) {
    test::writeFile(folder_ / "noise.xyzzy", "\x01\x02\x03");
    fs::create_directories(folder_ / "Empty.app");
    test::writeFile(folder_ / "no-program", "#!/no/such/interpreter\n", true);
    for (const char* name : {"missing", "noise.xyzzy", "Empty.app", "no-program"}) {
        EXPECT_FALSE(workspace::openFile(folder_ / name)) << name;
    }
}

TEST_F(WorkspaceTest, TakesOnlyAnOwnPrivateTemporaryDirectory) {
    const auto directory = TestHome::temporaryDirectory();
    fs::remove_all(directory);
    ASSERT_EQ(userTemporaryDirectory(), directory);
    EXPECT_EQ(fs::status(directory).permissions(), fs::perms::owner_all);

    fs::permissions(directory, fs::perms::group_read, fs::perm_options::add);
    EXPECT_EQ(userTemporaryDirectory(), std::nullopt);
    fs::remove(directory);
    fs::create_directory(folder_.parent_path() / "elsewhere");
    fs::permissions(folder_.parent_path() / "elsewhere", fs::perms::owner_all);
    fs::create_directory_symlink(folder_.parent_path() / "elsewhere", directory);
    EXPECT_EQ(userTemporaryDirectory(), std::nullopt);
    fs::remove(directory);
    test::writeFile(directory, "a file");
    EXPECT_EQ(userTemporaryDirectory(), std::nullopt);
    fs::remove(directory);
    // Where others can move it away after it was checked.
    fs::permissions(directory.parent_path(), fs::perms::all);
    EXPECT_EQ(userTemporaryDirectory(), std::nullopt);
    fs::permissions(directory.parent_path(), fs::perms::all | fs::perms::sticky_bit);
    EXPECT_EQ(userTemporaryDirectory(), directory);
    fs::permissions(directory.parent_path(), fs::perms::owner_all);
    fs::remove(directory);
    if (geteuid() == 0) { // only root can plant a directory of somebody else
        fs::create_directory(directory);
        fs::permissions(directory, fs::perms::owner_all);
        ASSERT_EQ(chown(directory.c_str(), 65534, 65534), 0);
        EXPECT_EQ(userTemporaryDirectory(), std::nullopt);
        fs::remove(directory);
    }
}

} // namespace
} // namespace platform
