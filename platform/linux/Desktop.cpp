#include "platform/Desktop.h"

#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/Log.h"

#include <chrono>
#include <future>
#include <string>
#include <vector>

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

/// Has the desktop's own opener, or else GIO's, open an address or a file. As programs they give
/// the application a session of its own, and nothing that they wait for holds this process.
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
        if (status.get() == 0) {
            return {};
        }
        error = std::make_error_code(std::errc::not_supported); // by what it was given
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
