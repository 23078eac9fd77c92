#pragma once

#include "base/Format.h"

#include <initializer_list>
#include <string_view>

namespace platform {

/// Writes one line to the system log (syslog, facility user), then to standard error: the time,
/// the program's name and process ID, and the formatted text. Standard error gets only the bytes
/// that it accepts at once, so an unread pipe never blocks the caller. The process must ignore
/// SIGPIPE. In the system log, "-" replaces a space in the name, because journald (252) does not
/// find names with a space or the process ID after one. Each byte of a control character (C1 and
/// bidirectional ones included) and of invalid UTF-8 is escaped as `\xNN`. A logged name therefore
/// cannot start a line, reverse one, or control a terminal. Write errors are ignored. Call from any
/// thread. Lines of several threads do not mix.
///
/// @param format the fixed message. Each "%@" takes one argument (see base::formatted()).
void log(std::string_view format, std::initializer_list<base::FormatArgument> arguments = {});

/// Makes an uncaught exception log its text in one line and abort the process. If the line itself
/// fails for lack of memory, the process only aborts. Call once, at the start of main().
void logUncaughtFailures();

} // namespace platform
