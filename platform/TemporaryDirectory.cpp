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

// Names that are tried in one place: others may have taken some of them.
constexpr int kNames = 100;

/// The places for temporary files, in the order in which they are tried.
std::vector<fs::path> places() {
    const auto directory = [](const char* variable) {
        const char* value = std::getenv(variable);
        return fs::path(value != nullptr ? value : "");
    };
    return {directory("TMPDIR"), directory("XDG_RUNTIME_DIR"), "/tmp",
            directory("HOME") / ".cache"};
}

/// Whether nobody but the user and root can put something else into the place of an entry.
bool keepsEntriesInPlace(const fs::path& directory) {
    struct stat status {};
    return ::stat(directory.c_str(), &status) == 0 &&
           (status.st_uid == ::geteuid() || status.st_uid == 0) &&
           ((status.st_mode & (S_IWGRP | S_IWOTH)) == 0 || (status.st_mode & S_ISVTX) != 0);
}

/// The same of every directory on the way to it, as each could be renamed in its own.
bool isKeptInPlace(fs::path directory) {
    while (keepsEntriesInPlace(directory)) {
        if (directory == directory.root_path()) {
            return true;
        }
        directory = directory.parent_path();
    }
    return false;
}

#ifndef ST_NOEXEC
constexpr unsigned long ST_NOEXEC = 0; // where the system does not tell
#endif

bool canHoldPrograms(const fs::path& directory) {
    struct statvfs status {};
    return ::statvfs(directory.c_str(), &status) == 0 &&
           (status.f_flag & (ST_NOEXEC | ST_RDONLY)) == 0;
}

bool hasRoom(const fs::path& directory, std::uintmax_t room) {
    struct statvfs status {};
    return ::statvfs(directory.c_str(), &status) == 0 &&
           std::uintmax_t{status.f_bavail} * status.f_frsize >= room;
}

/// Makes the directory, or finds it there as a private one of the user's.
bool makePrivate(const fs::path& path) {
    // Whether it was made does not matter: what is there now is looked at, through the open
    // directory, so that what is checked is what was found.
    ::mkdir(path.c_str(), 0700);
    const FileDescriptor directory(
        ::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
    struct stat status {};
    return directory.isOpen() && ::fstat(directory.get(), &status) == 0 &&
           status.st_uid == ::geteuid() && (status.st_mode & (S_IRWXG | S_IRWXO)) == 0;
}

/// A private directory in a place; by the same names each time, so that one of an earlier run is
/// found again.
std::optional<fs::path> privateDirectoryIn(const fs::path& place, const std::string& owner) {
    const std::string name = owner + "-" + std::to_string(::geteuid());
    for (int number = 0; number < kNames; ++number) {
        const auto path = place / (number == 0 ? name : name + "-" + std::to_string(number));
        if (makePrivate(path)) {
            return path;
        }
    }
    return std::nullopt;
}

} // namespace

std::optional<fs::path> replaceableTemporaryFile(const std::string& owner, const std::string& name,
                                                 std::uintmax_t room) {
    const auto candidates = places();
    for (const auto& place : candidates) {
        if (!place.is_absolute()) {
            continue;
        }
        if (&place == &candidates.back()) {
            ::mkdir(place.c_str(), 0700); // a new home has no ~/.cache yet
        }
        std::error_code error;
        // Without links, which others could change to lead elsewhere.
        const auto directory = fs::canonical(place, error);
        if (error || !isKeptInPlace(directory) || !canHoldPrograms(directory)) {
            continue;
        }
        if (const auto own = privateDirectoryIn(directory, owner)) {
            const auto path = *own / name;
            if (!name.empty()) {
                removeTree(path); // its bytes are free for the new one
            }
            if (hasRoom(*own, room)) {
                return path;
            }
            ::rmdir(own->c_str()); // unless it holds something else
        }
    }
    return std::nullopt;
}

} // namespace platform
