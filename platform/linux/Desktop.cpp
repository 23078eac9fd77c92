#include "platform/Desktop.h"

#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/Log.h"

#include <chrono>
#include <cstdlib>
#include <future>
#include <sstream>
#include <string>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

// The limit for both openers together. Usually they exit once the application has started. An
// opener that runs a browser itself, or waits for a hung session bus, keeps running after this
// time.
constexpr std::chrono::seconds kLongestOpening{5};

bool isExecutable(const fs::file_status& status) {
    constexpr auto kAnyone = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    return fs::is_regular_file(status) && (status.permissions() & kAnyone) != fs::perms::none;
}

/// Returns true if xdg-open found no application, so that another opener may try. Other statuses
/// can come from an application that it started.
bool foundNoApplication(int status) {
    constexpr int kNoMethod = 3;
    return WIFEXITED(status) && WEXITSTATUS(status) == kNoMethod;
}

constexpr const char* kFirstOpener = "xdg-open";
constexpr const char* kSecondOpener = "gio";

/// Returns true if startChildProcess() finds a program of this name.
bool isInPath(const char* name) {
    const char* const variable = std::getenv("PATH");
    std::istringstream directories(variable != nullptr ? variable : "/bin:/usr/bin");
    for (std::string directory; std::getline(directories, directory, ':');) {
        if (access((fs::path(directory) / name).c_str(), X_OK) == 0) {
            return true;
        }
    }
    return false;
}

/// Opens an address or a file with the desktop's opener, or with GIO's if the first could not be
/// started or found no application. Both are child processes, so the application gets its own
/// session, and a hung session bus cannot block this process.
std::error_code openWithDefaultApplication(const std::string& target) {
    std::error_code error;
    const auto deadline = std::chrono::steady_clock::now() + kLongestOpening;
    const std::vector<std::string> commands[] = {{kFirstOpener, target},
                                                 {kSecondOpener, "open", target}};
    for (const auto& command : commands) {
        std::future<int> status;
        error = startChildProcess(command, status);
        if (error) {
            continue;
        }
        if (status.wait_until(deadline) != std::future_status::ready) {
            log("%@ is still running after %@ seconds and may not have opened %@",
                {command.front(), std::to_string(kLongestOpening.count()), target});
            return {};
        }
        const int end = status.get();
        if (end == 0) {
            return {};
        }
        if (end == kUnknownStatus) {
            log("Cannot observe the end of %@, which may not have opened %@",
                {command.front(), target});
            return {};
        }
        error = std::make_error_code(std::errc::not_supported);
        if (!foundNoApplication(end)) {
            break; // An application may have opened it, and it must not be opened twice.
        }
    }
    return error;
}

} // namespace

std::error_code openFile(const fs::path& file) {
    // Stop if stat fails, because the default application must not get this file.
    std::error_code error;
    const auto status = fs::status(file, error);
    if (error) {
        return error;
    }
    const bool isBundle = file.extension() == ".app" && fs::is_directory(status);
    const fs::path program = isBundle ? Bundle::executableOf(file) : file;
    if (isExecutable(isBundle ? fs::status(program, error) : status)) {
        return startChildProcess({program.native()});
    }
    if (isBundle) {
        return error ? error : std::make_error_code(std::errc::permission_denied);
    }
    return openWithDefaultApplication(file.native());
}

std::error_code openAddress(const std::string& address) {
    return openWithDefaultApplication(address);
}

std::string opener() {
    return isInPath(kFirstOpener) ? kFirstOpener : isInPath(kSecondOpener) ? kSecondOpener : "";
}

} // namespace platform::desktop
