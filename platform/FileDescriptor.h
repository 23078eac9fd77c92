#pragma once

#include <utility>

#include <unistd.h>

namespace platform {

/// Owns a POSIX file descriptor and closes it at the end of its life. Movable, not copyable.
class FileDescriptor {
  public:
    FileDescriptor() = default;
    explicit FileDescriptor(int descriptor) : descriptor_(descriptor) {}
    FileDescriptor(FileDescriptor&& other) noexcept
        : descriptor_(std::exchange(other.descriptor_, kNone)) {}
    FileDescriptor& operator=(FileDescriptor&& other) noexcept {
        std::swap(descriptor_, other.descriptor_);
        return *this;
    }
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
    static constexpr int kNone = -1;
    int descriptor_ = kNone;
};

} // namespace platform
