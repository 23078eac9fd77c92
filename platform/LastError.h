#pragma once

#include <cerrno>
#include <system_error>

namespace platform {

/// Why the system call before it failed. Ask at once: the next call may say something else.
[[nodiscard]] inline std::error_code lastError() {
    return {errno, std::generic_category()};
}

} // namespace platform
