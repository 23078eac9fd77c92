#include "platform/Desktop.h"

#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/Log.h"

#include <chrono>
#include <future>
#include <string>
#include <vector>

#include <sys/wait.h>

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

// For both openers together. They end once the application is on its way; one that runs a browser
// itself, or waits for a session bus that does not answer, is left to itself after this time.
constexpr std::chrono::seconds kLongestOpening{5};

bool isExecutable(const fs::file_status& status) {
    constexpr auto kAnyone = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    return fs::is_regular_file(status) && (status.permissions() & kAnyone) != fs::perms::none;
}

/// Returns true if xdg-open ended without having started an application, so that another opener can
/// take its place. It also reports a failure if the application that it ran did.
bool foundNoApplication(int status) {
    constexpr int kNoMethod = 3;
    return WIFEXITED(status) && WEXITSTATUS(status) == kNoMethod;
}

/// Has the desktop's own opener open an address or a file, or GIO's opener if the first could not
/// be started or found no application. As programs they give the application a session of its own,
/// and nothing that they wait for holds this process.
std::error_code openWithDefaultApplication(const std::string& target) {
    std::error_code error;
    const auto deadline = std::chrono::steady_clock::now() + kLongestOpening;
    const std::vector<std::string> commands[] = {{"xdg-open", target}, {"gio", "open", target}};
    for (const auto& command : commands) {
        std::future<int> status;
        error = startChildProcess(command, status);
        if (error) {
            continue;
        }
        if (status.wait_until(deadline) != std::future_status::ready) {
            log("%@ has not ended after %@ seconds and may not have opened %@",
                {command.front(), std::to_string(kLongestOpening.count()), target});
            return {};
        }
        const int end = status.get();
        if (end == 0) {
            return {};
        }
        if (end == kUnknownStatus) {
            log("%@ could not be waited for and may not have opened %@", {command.front(), target});
            return {};
        }
        error = std::make_error_code(std::errc::not_supported); // by the opener
        if (!foundNoApplication(end)) {
            break; // Something may have opened it, and it must not be opened twice.
        }
    }
    return error;
}

} // namespace

std::error_code openFile(const fs::path& file) {
    // What cannot be looked at is not opened: some other application would get it.
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

} // namespace platform::desktop
