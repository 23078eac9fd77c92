#pragma once

#include <string>
#include <vector>

namespace platform {

/// Starts a program and returns at once; nobody waits for it and its exit status is not read. Its
/// standard streams are on the null device, it inherits no other descriptor, and it runs in a
/// session of its own, so it outlives this process. It is reaped when it ends.
///
/// @param arguments the program's absolute path, followed by its arguments; not empty.
/// @return whether the program was started.
[[nodiscard]] bool startChildProcess(const std::vector<std::string>& arguments);

} // namespace platform
