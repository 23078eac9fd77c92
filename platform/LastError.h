#pragma once

#include <cerrno>
#include <system_error>

namespace platform {

/// Returns the reason why the latest system call failed. Call it immediately, because the next
/// system call can change the reason.
[[nodiscard]] inline std::error_code lastError() {
    return {errno, std::generic_category()};
}

} // namespace platform
