#include "platform/TemporaryDirectory.h"

#include "platform/FileDescriptor.h"

#include <cstdlib>
#include <string>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

std::filesystem::path sharedTemporaryDirectory() {
    const char* configured = std::getenv("TMPDIR");
    return configured != nullptr && *configured == '/' ? configured : "/tmp";
}

} // namespace

std::optional<std::filesystem::path> userTemporaryDirectory() {
    const uid_t user = ::geteuid();
    auto path = sharedTemporaryDirectory() / ("subscription-helper-" + std::to_string(user));
    ::mkdir(path.c_str(), 0700);
    // Checked through the open directory, so that what is checked is what was found.
    const FileDescriptor directory(
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    if (!directory.isOpen() || ::fstat(directory.get(), &status) != 0 || status.st_uid != user ||
        (status.st_mode & (S_IRWXG | S_IRWXO)) != 0) {
        return std::nullopt;
    }
    return path;
}

} // namespace platform
