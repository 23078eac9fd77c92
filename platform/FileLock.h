#pragma once

#include "platform/FileDescriptor.h"

#include <filesystem>
#include <system_error>

namespace platform {

/// A lock between processes on a side file, tried once and never waited for. It ends with the
/// object, or with the process however that ends; child processes do not inherit it. The empty side
/// file stays.
class FileLock {
  public:
    /// Tries the lock on `path`, which is created (mode 0600) when it is missing.
    explicit FileLock(const std::filesystem::path& path);

    /// None when this object has the lock; `operation_would_block` when another process, or object,
    /// has it; else why the side file cannot be made or locked.
    [[nodiscard]] const std::error_code& error() const { return error_; }

  private:
    FileDescriptor file_;
    std::error_code error_;
};

} // namespace platform
