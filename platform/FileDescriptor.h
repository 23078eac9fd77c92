#pragma once

#include <unistd.h>

namespace platform {

/// Owns a POSIX file descriptor and closes it on destruction.
class FileDescriptor {
  public:
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(const FileDescriptor&) = delete;
    FileDescriptor& operator=(const FileDescriptor&) = delete;
    ~FileDescriptor() {
        if (isOpen()) {
            ::close(descriptor_);
        }
    }

    /// Returns true if the call that made the descriptor succeeded.
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    /// Returns the descriptor, which this object still owns.
    [[nodiscard]] int get() const { return descriptor_; }

  private:
    int descriptor_;
};

} // namespace platform
