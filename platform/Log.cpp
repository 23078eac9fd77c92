#include "platform/Log.h"

#include "base/Escape.h"
#include "base/Timestamp.h"
#include "platform/Bundle.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mutex>
#include <string>

#include <climits>
#include <poll.h>
#include <syslog.h>
#include <unistd.h>

namespace platform {
namespace {

/// Returns the program's name without spaces, so that the system log can separate it from the
/// message. The text is static, because openlog() keeps only its address.
const std::string& systemLogTag() {
    static const std::string tag = [] {
        std::string name = programName();
        std::replace(name.begin(), name.end(), ' ', '-');
        return name;
    }();
    return tag;
}

bool acceptsBytes(int descriptor) {
    pollfd state{descriptor, POLLOUT, 0};
    return poll(&state, 1, 0) == 1 && (state.revents & POLLOUT) != 0;
}

/// Writes as much of a line to standard error as it accepts at once, because an unread pipe would
/// block this process forever. A pipe that accepts bytes accepts at least PIPE_BUF of them.
void writeToStandardError(std::string_view line) {
    static std::mutex mutex; // another thread could fill the pipe between poll() and write()
    const std::lock_guard lock(mutex);
    while (!line.empty() && acceptsBytes(STDERR_FILENO)) {
        const ssize_t written =
            write(STDERR_FILENO, line.data(), std::min<std::size_t>(line.size(), PIPE_BUF));
        if (written <= 0) {
            return;
        }
        line.remove_prefix(static_cast<std::size_t>(written));
    }
}

[[noreturn]] void logAndAbort() {
    // If memory is exhausted, log() fails too and must not call this handler again.
    std::set_terminate(std::abort);
    try {
        if (const auto failure = std::current_exception()) {
            std::rethrow_exception(failure);
        }
        log("Terminated without an exception");
    } catch (const std::exception& failure) {
        log("Uncaught failure: %@", {failure.what()});
    } catch (...) {
        log("Uncaught exception of an unknown type");
    }
    std::abort();
}

} // namespace

void log(std::string_view format, std::initializer_list<base::FormatArgument> arguments) {
    const std::string message = base::escaped(base::formatted(format, arguments));
    openlog(systemLogTag().c_str(), LOG_PID, LOG_USER); // repeated calls change nothing
    syslog(LOG_NOTICE, "%s", message.c_str());
    const auto now =
        std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    writeToStandardError(base::formatted("%@ %@[%@] %@\n", {base::timestampText(now), programName(),
                                                            std::to_string(getpid()), message}));
}

void logUncaughtFailures() {
    std::set_terminate(logAndAbort);
}

} // namespace platform
