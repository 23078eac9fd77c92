#include "platform/Desktop.h"

#include "base/Handle.h"
#include "platform/FileDescriptor.h"
#include "platform/LastError.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gio/gio.h>
#include <sys/stat.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

using base::Handle;

/// Returns a file of the local system only, because GIO connects to the session bus for other kinds
/// and would wait forever if that hangs.
Handle<GFile, g_object_unref> fileFor(const fs::path& path) {
    return Handle<GFile, g_object_unref>(g_vfs_get_file_for_path(g_vfs_get_local(), path.c_str()));
}

/// Returns true if the user's data directory, which contains the Trash, is absolute. GIO would take
/// an invalid relative one as below the working directory.
bool hasDataDirectory() {
    return g_path_is_absolute(g_get_user_data_dir()) != FALSE;
}

/// Returns the nearest standard code for an error of GIO.
std::error_code errorOf(const GError& error) {
    constexpr std::pair<int, std::errc> kErrors[] = {
        {G_IO_ERROR_NOT_FOUND, std::errc::no_such_file_or_directory},
        {G_IO_ERROR_PERMISSION_DENIED, std::errc::permission_denied},
        {G_IO_ERROR_READ_ONLY, std::errc::read_only_file_system},
        {G_IO_ERROR_NO_SPACE, std::errc::no_space_on_device},
        {G_IO_ERROR_FILENAME_TOO_LONG, std::errc::filename_too_long},
        {G_IO_ERROR_NOT_SUPPORTED, std::errc::not_supported},
    };
    for (const auto& [code, meaning] : kErrors) {
        if (g_error_matches(&error, G_IO_ERROR, code) != FALSE) {
            return std::make_error_code(meaning);
        }
    }
    return std::make_error_code(std::errc::io_error);
}

/// Undoes the move of an item to the Trash if its trashinfo file, which names the origin, is
/// missing or empty. GIO continues if it cannot write that file, for example on a full disk.
/// @param item the item, opened before the move, so that its present path can be read.
/// @return true if the move was undone.
bool undoMoveWithoutInfo(const FileDescriptor& item, const fs::path& origin) {
    std::error_code error;
    const auto link = fs::path("/proc/self/fd") / std::to_string(item.get());
    const fs::path trashed = fs::read_symlink(link, error);
    fs::path info = trashed.parent_path().parent_path() / "info" / trashed.filename();
    info += ".trashinfo";
    if (error || fs::file_size(info, error) > 0 || error ||
        ::renameat2(AT_FDCWD, trashed.c_str(), AT_FDCWD, origin.c_str(), RENAME_NOREPLACE) != 0) {
        return false;
    }
    ::unlink(info.c_str());
    return true;
}

dev_t deviceOf(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 ? status.st_dev : 0;
}

/// Returns the directory that GIO takes as the Trash of an item: one of the home, or of the user at
/// the top of another file system. It need not exist.
fs::path trashFor(const fs::path& item) {
    const auto device = deviceOf(item);
    if (device == deviceOf(g_get_home_dir())) {
        return fs::path(g_get_user_data_dir()) / "Trash";
    }
    fs::path top = item;
    while (top.has_relative_path() && deviceOf(top.parent_path()) == device) {
        top = top.parent_path();
    }
    const std::string user = std::to_string(::getuid());
    std::error_code error;
    const auto shared = top / ".Trash" / user;
    return fs::is_directory(shared, error) ? shared : top / (".Trash-" + user);
}

/// Looks whether entries can be made in a directory. If it is missing, the directory above it,
/// which `directory` becomes, has to take it.
std::error_code checkWritable(fs::path& directory) {
    std::error_code error;
    const auto isMissing = [&] {
        return fs::symlink_status(directory, error).type() == fs::file_type::not_found;
    };
    while (directory.has_relative_path() && isMissing()) {
        directory = directory.parent_path();
    }
    const auto status = fs::status(directory, error);
    if (error || !fs::is_directory(status)) {
        return error ? error : std::make_error_code(std::errc::not_a_directory);
    }
    return ::access(directory.c_str(), W_OK | X_OK) == 0 ? std::error_code() : lastError();
}

/// Looks whether GIO offers the move.
std::error_code checkOffer(const fs::path& item) {
    constexpr const char* kAttribute = G_FILE_ATTRIBUTE_ACCESS_CAN_TRASH;
    GError* refusal = nullptr;
    const Handle<GFileInfo, g_object_unref> info(g_file_query_info(
        fileFor(item).get(), kAttribute, G_FILE_QUERY_INFO_NOFOLLOW_SYMLINKS, nullptr, &refusal));
    if (!info) {
        const Handle<GError, g_error_free> owned(refusal);
        return errorOf(*refusal);
    }
    return g_file_info_get_attribute_boolean(info.get(), kAttribute) != FALSE
               ? std::error_code()
               : std::make_error_code(std::errc::not_supported);
}

} // namespace

std::error_code moveToTrash(const fs::path& item) {
    if (!hasDataDirectory()) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    const FileDescriptor descriptor(::open(item.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    if (!descriptor.isOpen()) {
        return lastError();
    }
    GError* refusal = nullptr;
    if (g_file_trash(fileFor(item).get(), nullptr, &refusal) == FALSE) {
        const Handle<GError, g_error_free> owned(refusal);
        return errorOf(*refusal);
    }
    return undoMoveWithoutInfo(descriptor, item)
               ? std::make_error_code(std::errc::no_space_on_device)
               : std::error_code();
}

std::error_code checkTrash(const fs::path& item, fs::path& culprit) {
    culprit = g_get_user_data_dir();
    if (!hasDataDirectory()) {
        return std::make_error_code(std::errc::invalid_argument);
    }
    const auto trash = trashFor(item);
    std::vector<fs::path> changed = {item.parent_path(), trash / "files", trash / "info"};
    if (fs::is_directory(fs::symlink_status(item))) {
        changed.push_back(item); // its entry ".." names another directory then
    }
    for (const auto& directory : changed) {
        culprit = directory;
        if (const auto error = checkWritable(culprit)) {
            return error;
        }
    }
    culprit = item;
    return checkOffer(item);
}

} // namespace platform::desktop
