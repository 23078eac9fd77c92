#include "platform/TemporaryDirectory.h"

#include "platform/FileDescriptor.h"
#include "platform/FileTree.h"

#include <cstdlib>
#include <string>
#include <system_error>
#include <vector>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/statvfs.h>
#include <unistd.h>

namespace platform {
namespace {

namespace fs = std::filesystem;

// The number of names to try in one location, because other users may have taken some.
constexpr int kNames = 100;

/// Returns the locations for temporary files in the order of their use.
std::vector<fs::path> locations() {
    const auto directory = [](const char* variable) {
        const char* value = std::getenv(variable);
        return fs::path(value != nullptr ? value : "");
    };
    return {directory("TMPDIR"), directory("XDG_RUNTIME_DIR"), "/tmp",
            directory("HOME") / ".cache"};
}

/// Returns true if only the user and root can replace an entry of the directory.
bool protectsEntries(const fs::path& directory) {
    struct stat status {};
    return ::stat(directory.c_str(), &status) == 0 &&
           (status.st_uid == ::geteuid() || status.st_uid == 0) &&
           ((status.st_mode & (S_IWGRP | S_IWOTH)) == 0 || (status.st_mode & S_ISVTX) != 0);
}

/// Returns true if only the user and root can replace the directory or one of its parents.
bool isProtected(fs::path directory) {
    while (protectsEntries(directory)) {
        if (directory == directory.root_path()) {
            return true;
        }
        directory = directory.parent_path();
    }
    return false;
}

#ifndef ST_NOEXEC
constexpr unsigned long ST_NOEXEC = 0; // unknown on this system
#endif

bool allowsExecution(const fs::path& directory) {
    struct statvfs status {};
    return ::statvfs(directory.c_str(), &status) == 0 &&
           (status.f_flag & (ST_NOEXEC | ST_RDONLY)) == 0;
}

std::uintmax_t freeSpace(const fs::path& directory) {
    struct statvfs status {};
    return ::statvfs(directory.c_str(), &status) == 0
               ? std::uintmax_t{status.f_bavail} * status.f_frsize
               : 0;
}

/// Creates the directory if it is missing. Returns true if it is a private directory of the user.
bool makePrivate(const fs::path& path) {
    // Ignore whether it was created, and check the opened directory, which cannot be exchanged.
    ::mkdir(path.c_str(), 0700);
    const FileDescriptor directory(
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    return directory.isOpen() && ::fstat(directory.get(), &status) == 0 &&
           status.st_uid == ::geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

/// Returns a private directory in a location. The names are the same in each run, so that a later
/// run finds it again.
std::optional<fs::path> privateDirectoryIn(const fs::path& location, const std::string& owner) {
    const std::string name = owner + "-" + std::to_string(::geteuid());
    for (int number = 0; number < kNames; ++number) {
        const auto path = location / (number == 0 ? name : name + "-" + std::to_string(number));
        if (makePrivate(path)) {
            return path;
        }
    }
    return std::nullopt;
}

/// Returns the path of `name` in the first suitable location, in which `isUsable` returns true for
/// the private directory and that path.
template <class Check>
std::optional<fs::path> temporaryFileIn(const std::string& owner, const std::string& name,
                                        const Check& isUsable) {
    const auto candidates = locations();
    for (const auto& location : candidates) {
        if (!location.is_absolute()) {
            continue;
        }
        if (&location == &candidates.back()) {
            ::mkdir(location.c_str(), 0700); // a new home lacks ~/.cache
        }
        std::error_code error;
        // Resolve links, because others could change them.
        const auto directory = fs::canonical(location, error);
        if (error || !isProtected(directory) || !allowsExecution(directory)) {
            continue;
        }
        if (const auto own = privateDirectoryIn(directory, owner)) {
            const auto path = *own / name;
            if (isUsable(*own, path)) {
                return path;
            }
            ::rmdir(own->c_str()); // fails if it has other entries
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<fs::path> replaceableTemporaryFile(const std::string& owner, const std::string& name,
                                                 std::uintmax_t bytes) {
    return temporaryFileIn(owner, name, [=](const fs::path& directory, const fs::path& path) {
        removeTree(path); // its bytes are free for the new one
        return freeSpace(directory) >= bytes;
    });
}

std::optional<fs::path> checkedTemporaryFile(const std::string& owner, const std::string& name,
                                             std::uintmax_t bytes) {
    return temporaryFileIn(owner, name, [=](const fs::path& directory, const fs::path& path) {
        std::error_code error;
        const bool isThere = fs::exists(fs::symlink_status(path, error));
        return freeSpace(directory) + (isThere ? diskSize(path) : 0) >= bytes;
    });
}

} // namespace platform
