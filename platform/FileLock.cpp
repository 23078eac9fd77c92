#include "platform/FileLock.h"

#include "platform/LastError.h"

#include <fcntl.h>
#include <sys/file.h>

namespace platform {

// Follows no link, which could lock another file, and does not wait for a FIFO.
FileLock::FileLock(const std::filesystem::path& path)
    : file_(::open(path.c_str(), O_RDWR | O_CREAT | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC, 0600)) {
    if (!file_.isOpen() || ::flock(file_.get(), LOCK_EX | LOCK_NB) != 0) {
        error_ = lastError();
    }
}

} // namespace platform
