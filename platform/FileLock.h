#pragma once

#include "platform/FileDescriptor.h"

#include <filesystem>

namespace platform {

/// A lock between processes on a side file, tried once and never waited for. It ends with the
/// object, or with the process however that ends; child processes do not inherit it. The empty side
/// file stays.
class FileLock {
  public:
    enum class State {
        Held,       ///< this object has the lock
        Taken,      ///< another process (or object) has it
        Unavailable ///< the side file cannot be made or locked
    };

    /// Tries the lock on `path`, which is created (mode 0600) when it is missing.
    explicit FileLock(const std::filesystem::path& path);

    [[nodiscard]] State state() const { return state_; }

  private:
    FileDescriptor file_;
    State state_;
};

} // namespace platform
