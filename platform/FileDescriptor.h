#pragma once

#include <unistd.h>

namespace platform {

/// Owns a POSIX file descriptor and closes it at the end of its life.
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

    /// Whether there is a descriptor: false when the call that made it failed.
    [[nodiscard]] bool isOpen() const { return descriptor_ >= 0; }
    /// The descriptor, still owned by this object.
    [[nodiscard]] int get() const { return descriptor_; }

  private:
    int descriptor_;
};

} // namespace platform
