#pragma once

#include "platform/FileDescriptor.h"

#include <filesystem>
#include <system_error>

namespace platform {

/// A lock between processes on a lock file. It is tried once, without waiting. The lock ends with
/// the object or the process. Child processes do not inherit it. The empty lock file stays.
class FileLock {
  public:
    /// Tries to lock `path`, which is created with mode 0600 if it is missing.
    explicit FileLock(const std::filesystem::path& path);

    /// Returns an empty error if this object has the lock, `operation_would_block` if another
    /// process or object has it, or the reason if the lock file cannot be made or locked.
    [[nodiscard]] const std::error_code& error() const { return error_; }

  private:
    FileDescriptor file_;
    std::error_code error_;
};

} // namespace platform
