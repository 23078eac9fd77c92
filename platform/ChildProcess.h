#pragma once

#include <future>
#include <string>
#include <system_error>
#include <vector>

namespace platform {

/// The status of a child process whose end could not be observed.
inline constexpr int kUnknownStatus = -1;

/// Starts a program and returns immediately. The program outlives this process. It has its own
/// session, standard streams on the null device, no further descriptors, default signal actions
/// with all signals unblocked, and this process's environment without the dynamic linker's
/// variables (`LD_…`, `DYLD_…`). A thread reaps it. Call from any thread.
///
/// @param arguments the program, as an absolute path or a name that is searched in `PATH`, followed
/// by its arguments. Must not be empty.
/// @param status becomes ready when the program has ended. Its value is the status of waitpid(), or
/// kUnknownStatus if waiting failed. Destroying it does not wait.
/// @return an empty error, or the reason if the program could not be started. `status` is then
/// unchanged.
[[nodiscard]] std::error_code startChildProcess(const std::vector<std::string>& arguments,
                                                std::future<int>& status);
/// Starts a program in the same way and ignores its status.
[[nodiscard]] std::error_code startChildProcess(const std::vector<std::string>& arguments);

} // namespace platform
