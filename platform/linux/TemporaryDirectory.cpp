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

/// Whether nobody else can put something else into the place of an entry that is there.
bool keepsEntriesInPlace(const std::filesystem::path& directory, uid_t user) {
    struct stat status {};
    return ::stat(directory.c_str(), &status) == 0 &&
           (status.st_uid == user || status.st_uid == 0) &&
           ((status.st_mode & S_IWOTH) == 0 || (status.st_mode & S_ISVTX) != 0);
}

} // namespace

std::optional<std::filesystem::path> userTemporaryDirectory() {
    const uid_t user = ::geteuid();
    const auto shared = sharedTemporaryDirectory();
    if (!keepsEntriesInPlace(shared, user)) {
        return std::nullopt;
    }
    auto path = shared / ("subscription-helper-" + std::to_string(user));
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
