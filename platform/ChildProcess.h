#pragma once

#include <future>
#include <string>
#include <system_error>
#include <vector>

namespace platform {

/// The status of a child process that could not be waited for.
inline constexpr int kUnknownStatus = -1;

/// Starts a program and returns at once. It is on its own from then on and outlives this process: a
/// session of its own, standard streams on the null device, no other descriptor, default signal
/// actions with none blocked, and this process's environment without what the dynamic linker was
/// told for it (`LD_…`, `DYLD_…`). It is reaped when it ends. Any thread.
///
/// @param arguments the program, by an absolute path or by a name that `PATH` is searched for,
/// followed by its arguments; not empty.
/// @param status is ready once the program has ended, with its status as waitpid() gives it, or
/// with kUnknownStatus if it could not be waited for. Dropping it waits for nothing.
/// @return why the program could not be started; `status` is then as it was.
[[nodiscard]] std::error_code startChildProcess(const std::vector<std::string>& arguments,
                                                std::future<int>& status);
/// The same where nobody asks how the program ends.
[[nodiscard]] std::error_code startChildProcess(const std::vector<std::string>& arguments);

} // namespace platform
