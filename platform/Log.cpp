#include "platform/Log.h"

#include "platform/DateText.h"

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <string>

#include <cerrno>
#include <syslog.h>
#include <unistd.h>

namespace platform {
namespace {

/// Characters that a terminal acts on or that change the order of others, as ranges of the last
/// byte of their UTF-8 behind the bytes before it.
struct Controls {
    std::string_view lead;
    unsigned char first;
    unsigned char last;
};
constexpr Controls kControls[] = {
    {"", 0x00, 0x1f},         // C0
    {"", 0x7f, 0x7f},         // DEL
    {"\xc2", 0x80, 0x9f},     // C1
    {"\xd8", 0x9c, 0x9c},     // ARABIC LETTER MARK
    {"\xe2\x80", 0x8e, 0x8f}, // marks of direction
    {"\xe2\x80", 0xa8, 0xae}, // separators of lines and paragraphs, embeddings, overrides
    {"\xe2\x81", 0xa6, 0xa9}, // isolates
};

/// The bytes of the control character that `text` starts with, or 0.
std::size_t controlLength(std::string_view text) {
    for (const auto& [lead, first, last] : kControls) {
        if (text.starts_with(lead) && text.size() > lead.size()) {
            const auto byte = static_cast<unsigned char>(text[lead.size()]);
            if (byte >= first && byte <= last) {
                return lead.size() + 1;
            }
        }
    }
    return 0;
}

std::string escaped(std::string_view text) {
    constexpr std::string_view kDigits = "0123456789abcdef";
    std::string result;
    while (!text.empty()) {
        const auto length = controlLength(text);
        for (const char character : text.substr(0, length)) {
            const auto byte = static_cast<unsigned char>(character);
            result.append({'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0xfU]});
        }
        if (length == 0) {
            result.push_back(text.front());
        }
        text.remove_prefix(std::max<std::size_t>(length, 1));
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

void log(std::string_view format, std::initializer_list<TextArgument> arguments) {
    const std::string message = escaped(formatText(format, arguments));
    const auto now =
        std::chrono::floor<std::chrono::microseconds>(std::chrono::system_clock::now());
    const std::string line = formatText(
        "%@ %@[%@] %@\n", {dateText(now), programName(), std::to_string(getpid()), message});
    // One write, so that the lines of several threads do not mix.
    if (write(STDERR_FILENO, line.data(), line.size()) < 0) {
        // Standard error may be closed; the system log still gets the message.
    }
    openlog(systemLogTag().c_str(), LOG_PID, LOG_USER); // called again it changes nothing
    syslog(LOG_NOTICE, "%s", message.c_str());
}

void logUncaughtFailures() {
    std::set_terminate(logAndAbort);
}

} // namespace platform
