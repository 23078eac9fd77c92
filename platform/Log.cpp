#include "platform/Log.h"

#include "base/Timestamp.h"

#include <algorithm>
#include <bit>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <iterator>
#include <mutex>
#include <string>
#include <utility>

#include <cerrno>
#include <climits>
#include <poll.h>
#include <syslog.h>
#include <unistd.h>

namespace platform {
namespace {

struct Character {
    char32_t code = 0; // like a control for a byte that is not of UTF-8
    std::size_t length = 1;
};

/// The character that a text, not empty, begins with.
Character firstCharacter(std::string_view text) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text.front());
    const auto length = static_cast<std::size_t>(std::countl_one(lead));
    if (length == 0) {
        return {lead, 1};
    }
    if (length == 1 || length >= std::size(kSmallest) || length > text.size()) {
        return {};
    }
    char32_t code = lead & (0x7fU >> length);
    for (const char follower : text.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(follower);
        if ((byte & 0xc0U) != 0x80) {
            return {};
        }
        code = code << 6U | (byte & 0x3fU);
    }
    const bool isValid =
        code >= kSmallest[length] && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
    return isValid ? Character{code, length} : Character{};
}

/// Whether a terminal or a viewer could obey a character rather than show it.
bool isControl(char32_t code) {
    constexpr std::pair<char32_t, char32_t> kControls[] = {
        {0, 0x1f},        {0x7f, 0x9f},                       // C0, DEL and C1
        {0x2028, 0x2029},                                     // ends of lines and paragraphs
        {0x61c, 0x61c},   {0x200e, 0x200f}, {0x202a, 0x202e}, // the writing's direction
        {0x2066, 0x2069},
    };
    return std::any_of(std::begin(kControls), std::end(kControls), [code](const auto& range) {
        return code >= range.first && code <= range.second;
    });
}

std::string escaped(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.length);
        if (!isControl(character.code)) {
            result.append(bytes);
        } else {
            for (const char each : bytes) {
                const auto byte = static_cast<unsigned char>(each);
                result.append({'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0xfU]});
            }
        }
        text.remove_prefix(bytes.size());
    }
    return result;
}

std::string programName() {
#ifdef __GLIBC__
    return program_invocation_short_name;
#else
    return getprogname();
#endif
}

/// The program's name as the system log can tell it from the message: without a space. openlog()
/// keeps no copy of it.
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

/// Writes as much of a line to standard error as it accepts at once, because a pipe that nobody
/// reads would hold this process for ever. A pipe that accepts bytes has room for PIPE_BUF of them.
void writeToStandardError(std::string_view line) {
    static std::mutex mutex; // another thread could take the room between poll() and write()
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
    // Without memory the line itself fails, which must not come here again.
    std::set_terminate(std::abort);
    try {
        if (const auto failure = std::current_exception()) {
            std::rethrow_exception(failure);
        }
        log("Ended without a failure that could be named");
    } catch (const std::exception& failure) {
        log("Uncaught failure: %@", {failure.what()});
    } catch (...) {
        log("Uncaught failure of an unknown kind");
    }
    std::abort();
}

} // namespace

void log(std::string_view format, std::initializer_list<base::FormatArgument> arguments) {
    const std::string message = escaped(base::formatted(format, arguments));
    openlog(systemLogTag().c_str(), LOG_PID, LOG_USER); // called again it changes nothing
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
