#include "platform/FileLock.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/file.h>

namespace platform {
namespace {

FileLock::State tryLock(const FileDescriptor& file) {
    if (!file.isOpen()) {
        return FileLock::State::Unavailable;
    }
    if (::flock(file.get(), LOCK_EX | LOCK_NB) == 0) {
        return FileLock::State::Held;
    }
    return errno == EWOULDBLOCK ? FileLock::State::Taken : FileLock::State::Unavailable;
}

} // namespace

FileLock::FileLock(const std::filesystem::path& path)
    : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600)),
      state_(tryLock(file_)) {}

} // namespace platform
