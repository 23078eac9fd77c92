#include "platform/File.h"

#include "platform/FileDescriptor.h"

#include <cerrno>
#include <cstdio>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

bool writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return false;
        }
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool writeNewFile(const std::filesystem::path& path, std::string_view content) {
    // What a killed writer left at this name is of no use to anyone.
    ::unlink(path.c_str());
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    return file.isOpen() && writeAll(file.get(), content) && ::fsync(file.get()) == 0;
}

void flushDirectory(const std::filesystem::path& path) {
    const FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.isOpen()) {
        ::fsync(directory.get());
    }
}

} // namespace

std::optional<base::Data> readRegularFile(const std::filesystem::path& path, std::size_t limit) {
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode) ||
        std::cmp_greater(status.st_size, limit)) {
        return std::nullopt;
    }
    // One byte more than allowed, to notice a file that grows while it is read.
    base::Data data(limit + 1, '\0');
    std::size_t length = 0;
    while (length < data.size()) {
        const ssize_t got = ::read(file.get(), data.data() + length, data.size() - length);
        if (got < 0 && errno == EINTR) {
            continue;
        }
        if (got < 0) {
            return std::nullopt;
        }
        if (got == 0) {
            data.resize(length);
            return data;
        }
        length += static_cast<std::size_t>(got);
    }
    return std::nullopt;
}

bool replaceFile(const std::filesystem::path& path, std::string_view content) {
    std::error_code error;
    std::filesystem::path target = std::filesystem::canonical(path, error);
    if (error == std::errc::no_such_file_or_directory) {
        target = path;
    } else if (error) {
        return false;
    }
    std::filesystem::path fresh = target;
    fresh += ".new";
    if (!writeNewFile(fresh, content) || std::rename(fresh.c_str(), target.c_str()) != 0) {
        ::unlink(fresh.c_str());
        return false;
    }
    // The new content is there, whatever becomes of this: it may only be lost again in a crash.
    flushDirectory(target.parent_path());
    return true;
}

} // namespace platform
