#include "platform/File.h"

#include "platform/FileDescriptor.h"
#include "platform/LastError.h"

#include <algorithm>
#include <cerrno>
#include <cstdint>
#include <cstdio>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform {
namespace {

std::error_code writeAll(int descriptor, std::string_view content) {
    while (!content.empty()) {
        const ssize_t written = ::write(descriptor, content.data(), content.size());
        if (written < 0 && errno == EINTR) {
            continue;
        }
        if (written <= 0) {
            return lastError();
        }
        content.remove_prefix(static_cast<std::size_t>(written));
    }
    return {};
}

std::error_code writeNewFile(const std::filesystem::path& path, std::string_view content) {
    // Remove the incomplete file of a killed writer.
    ::unlink(path.c_str());
    const FileDescriptor file(
        ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.isOpen()) {
        return lastError();
    }
    const auto error = writeAll(file.get(), content);
    return error || ::fsync(file.get()) == 0 ? error : lastError();
}

void flushDirectory(const std::filesystem::path& path) {
    const FileDescriptor directory(::open(path.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (directory.isOpen()) {
        ::fsync(directory.get());
    }
}

/// The two paths of a replacement: the file without links to it, and the new file beside it.
struct Replacement {
    std::filesystem::path target;
    std::filesystem::path fresh;
};

std::error_code writeReplacement(const std::filesystem::path& path, std::string_view content,
                                 Replacement& replacement) {
    std::error_code error;
    replacement.target = std::filesystem::canonical(path, error);
    if (error == std::errc::no_such_file_or_directory) {
        replacement.target = path;
    } else if (error) {
        return error;
    }
    replacement.fresh = replacement.target;
    replacement.fresh += ".new";
    return writeNewFile(replacement.fresh, content);
}

} // namespace

base::Data readRegularFile(const std::filesystem::path& path, std::size_t limit,
                           std::error_code& error) {
    // Do not wait, because a FIFO can be recognized only after it is open.
    const FileDescriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    struct stat status {};
    if (!file.isOpen() || ::fstat(file.get(), &status) != 0) {
        error = lastError();
        return {};
    }
    if (!S_ISREG(status.st_mode)) {
        error = std::make_error_code(std::errc::not_supported);
        return {};
    }
    error.clear();
    const auto size = static_cast<std::uintmax_t>(status.st_size);
    // Ask for one byte more than the size, to notice the end of the file.
    base::Data data(static_cast<std::size_t>(std::min<std::uintmax_t>(size, limit)) + 1, '\0');
    std::size_t length = 0;
    for (;;) {
        const ssize_t got = ::read(file.get(), data.data() + length, data.size() - length);
        if (got == 0) {
            data.resize(length);
            return data;
        }
        if (got > 0) {
            length += static_cast<std::size_t>(got);
        } else if (errno != EINTR) {
            error = lastError();
            return {};
        }
        if (length > limit) {
            error = std::make_error_code(std::errc::file_too_large);
            return {};
        }
        if (length == data.size()) {
            data.resize(limit + 1); // the file grows while it is read
        }
    }
}

std::error_code replaceFile(const std::filesystem::path& path, std::string_view content) {
    Replacement replacement;
    auto error = writeReplacement(path, content, replacement);
    const auto& [target, fresh] = replacement;
    if (!error && std::rename(fresh.c_str(), target.c_str()) != 0) {
        error = lastError();
    }
    if (error) {
        ::unlink(fresh.c_str());
        return error;
    }
    // Ignore the result, because the new content is in place. Only a crash could restore the old.
    flushDirectory(target.parent_path());
    return {};
}

std::error_code checkReplacement(const std::filesystem::path& path, std::string_view content) {
    Replacement replacement;
    const auto error = writeReplacement(path, content, replacement);
    ::unlink(replacement.fresh.c_str());
    return error;
}

} // namespace platform
