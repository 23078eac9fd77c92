#pragma once

#include "base/Format.h"

#include <initializer_list>
#include <string_view>

namespace platform {

/// Writes one line to the system log (syslog, facility user), then to standard error: the time,
/// the program's name and process ID, and the formatted text. Standard error gets only the bytes
/// that it accepts at once, so a pipe that nobody reads never holds the caller. The process must
/// ignore SIGPIPE. In the system log a space in the name
/// is "-": journald (252) does not find names with a space, or the process id after one. Control
/// characters in the text, C1 and those of direction included, and bytes that are no UTF-8 are
/// escaped as `\xNN` for each byte, so a logged name can neither start a line of its own nor turn
/// one round, nor tell a terminal anything. A failure to write is ignored. May be called from any
/// thread; lines of several threads do not mix.
///
/// @param format the fixed message; each "%@" takes one argument (see base::formatted()).
void log(std::string_view format, std::initializer_list<base::FormatArgument> arguments = {});

/// Makes an uncaught failure end the process with one log line that carries the failure's text,
/// followed by an abort; by the abort alone where the line itself fails, for want of memory. Call
/// once, at the start of main().
void logUncaughtFailures();

} // namespace platform
