#include "platform/Workspace.h"

#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/FileDescriptor.h"
#include "platform/Log.h"
#include "platform/URL.h"

#include <cstdio>
#include <memory>
#include <string>

#include <fcntl.h>
#include <gio/gio.h>
#include <unistd.h>

namespace platform::workspace {
namespace {

namespace fs = std::filesystem;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using File = std::unique_ptr<GFile, Unref>;

struct Free {
    void operator()(gchar* text) const { g_free(text); }
};
using Text = std::unique_ptr<gchar, Free>;

File fileFor(const fs::path& path) {
    return File(g_file_new_for_path(path.c_str()));
}

bool isExecutable(const fs::file_status& status) {
    constexpr auto kAnyone = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    return fs::is_regular_file(status) && (status.permissions() & kAnyone) != fs::perms::none;
}

bool openWithDefaultApplication(const char* uri) {
    return g_app_info_launch_default_for_uri(uri, nullptr, nullptr) != FALSE;
}

/// Undoes the move of an item to the Trash when no note lies beside it that says where it came
/// from: GIO goes on when it cannot write one, on a full disk for example. Gives whether it did.
/// @param item the item, open since before the move, which tells where it is now.
bool undoMoveWithoutNote(const FileDescriptor& item, const fs::path& origin) {
    std::error_code error;
    const auto link = fs::path("/proc/self/fd") / std::to_string(item.get());
    const fs::path trashed = fs::read_symlink(link, error);
    fs::path note = trashed.parent_path().parent_path() / "info" / trashed.filename();
    note += ".trashinfo";
    if (error || fs::file_size(note, error) > 0 || error ||
        ::renameat2(AT_FDCWD, trashed.c_str(), AT_FDCWD, origin.c_str(), RENAME_NOREPLACE) != 0) {
        return false;
    }
    ::unlink(note.c_str());
    return true;
}

} // namespace

bool recycle(const fs::path& directory, const fs::path& name) {
    // A name such as ".." would move something else than the caller named.
    if (name.empty() || name == "." || name == ".." || name.has_parent_path()) {
        return false;
    }
    const fs::path path = directory / name;
    const FileDescriptor item(::open(path.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return item.isOpen() && g_file_trash(fileFor(path).get(), nullptr, nullptr) != FALSE &&
           !undoMoveWithoutNote(item, path);
}

bool openFile(const fs::path& file) {
    // What cannot be looked at is not opened: some other application would get it.
    std::error_code error;
    const auto status = fs::status(file, error);
    if (error) {
        return false;
    }
    const bool isBundle = file.extension() == ".app" && fs::is_directory(status);
    const fs::path program = isBundle ? Bundle::executableOf(file) : file;
    if (isExecutable(isBundle ? fs::status(program, error) : status)) {
        return startChildProcess({program.native()});
    }
    return !isBundle && openWithDefaultApplication(Text(g_file_get_uri(fileFor(file).get())).get());
}

bool openURL(std::string_view address) {
    const auto url = webAddress(address);
    if (!url) {
        return false;
    }
    return openWithDefaultApplication(url->text().c_str());
}

} // namespace platform::workspace
