#include "tests/support/TestHome.h"

#include "Brand.h"

#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <thread>

#include <unistd.h>

namespace test {
namespace {

namespace fs = std::filesystem;

/// A temporary directory, removed when the process exits.
struct Directory {
    Directory() {
        std::string name = (fs::temp_directory_path() / "helper-test-XXXXXX").native();
        if (mkdtemp(name.data()) == nullptr) {
            throw std::runtime_error("no temporary directory");
        }
        path = name;
        fs::create_directory(path / "tmp");
    }
    Directory(const Directory&) = delete;
    Directory& operator=(const Directory&) = delete;
    ~Directory() {
        std::error_code error;
        fs::remove_all(path, error);
    }

    fs::path path;
};

} // namespace

TestHome::TestHome() {
    const fs::path& home = path();
    setenv("HOME", home.c_str(), 1);
    setenv("XDG_CONFIG_HOME", (home / "config").c_str(), 1);
    setenv("XDG_DATA_HOME", (home / "data").c_str(), 1);
    setenv("XDG_CACHE_HOME", (home / "cache").c_str(), 1);
    setenv("TMPDIR", (home / "tmp").c_str(), 1);
    setenv("BROWSER", "false", 1); // prevents starting this machine's browser
    for (const char* proxy : {"http_proxy", "HTTP_PROXY", "ALL_PROXY", "all_proxy"}) {
        unsetenv(proxy);
    }
}

const fs::path& TestHome::path() {
    static const Directory directory;
    return directory.path;
}

fs::path TestHome::trashedFile(const std::string& name) {
    return path() / "data" / "Trash" / "files" / name;
}

fs::path TestHome::temporaryDirectory() {
    return path() / "tmp" / (HELPER_IDENTIFIER "-" + std::to_string(geteuid()));
}

TestBundle::TestBundle(fs::path path) : path_(std::move(path)) {
    fs::remove_all(path_);
    writeFile(path_ / "Contents" / "Info.plist", "<plist/>");
    withScript(path_.stem(), "exit 0");
}

fs::path TestBundle::executable(const std::string& name) const {
    return path_ / "Contents" / "Linux" / name;
}

void TestBundle::asMainBundle() const {
    setExecutablePath(executable(path_.stem()));
}

void TestBundle::withResource(const std::string& name, std::string_view content) const {
    writeFile(path_ / "Contents" / "Resources" / name, content);
}

void TestBundle::withScript(const std::string& name, std::string_view commands) const {
    writeFile(executable(name), "#!/bin/sh\n" + std::string(commands) + "\n", true);
}

void writeFile(const fs::path& path, std::string_view content, bool executable) {
    fs::create_directories(path.parent_path());
    std::ofstream(path, std::ios::binary) << content;
    if (executable) {
        fs::permissions(path, fs::perms::owner_all);
    }
}

std::string readFile(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::string repeated(const std::string& text, std::size_t count, std::size_t number) {
    std::string result;
    for (const std::size_t end = number + count; number < end; ++number) {
        for (const char character : text) {
            result += character == '@'   ? std::to_string(number)
                      : character == '~' ? std::to_string(number - 1)
                                         : std::string(1, character);
        }
    }
    return result;
}

bool becomesTrue(const std::function<bool()>& condition) {
    for (int round = 0; round < 1000 && !condition(); ++round) {
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
    return condition();
}

bool appears(const fs::path& path) {
    return becomesTrue([&] { return fs::exists(path); });
}

} // namespace test
