#include "platform/Desktop.h"

#include "platform/Bundle.h"
#include "platform/ChildProcess.h"
#include "platform/FileDescriptor.h"
#include "platform/Log.h"

#include <chrono>
#include <cstdio>
#include <future>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include <fcntl.h>
#include <gio/gio.h>
#include <unistd.h>

namespace platform::desktop {
namespace {

namespace fs = std::filesystem;

struct Unref {
    void operator()(gpointer object) const { g_object_unref(object); }
};
using File = std::unique_ptr<GFile, Unref>;

// For both openers together. They end once the application is on its way; one that runs a browser
// itself, or waits for a session bus that does not answer, is left to itself after this time.
constexpr std::chrono::seconds kLongestOpening{5};

/// A file of the local system only: other kinds would have GIO connect to the session bus first and
/// wait for ever for one that does not answer.
File fileFor(const fs::path& path) {
    return File(g_vfs_get_file_for_path(g_vfs_get_local(), path.c_str()));
}

bool isExecutable(const fs::file_status& status) {
    constexpr auto kAnyone = fs::perms::owner_exec | fs::perms::group_exec | fs::perms::others_exec;
    return fs::is_regular_file(status) && (status.permissions() & kAnyone) != fs::perms::none;
}

/// Has the desktop's own opener, or else GIO's, open an address or a file. As programs they give
/// the application a session of its own, and nothing that they wait for holds this process.
bool openWithDefaultApplication(const std::string& target) {
    const auto deadline = std::chrono::steady_clock::now() + kLongestOpening;
    const std::vector<std::string> commands[] = {{"xdg-open", target}, {"gio", "open", target}};
    for (const auto& command : commands) {
        auto status = startChildProcess(command);
        if (!status.valid()) {
            continue;
        }
        if (status.wait_until(deadline) != std::future_status::ready) {
            log("%@ has not ended after %@ seconds and may not have opened %@",
                {command.front(), std::to_string(kLongestOpening.count()), target});
            return true;
        }
        if (status.get() == 0) {
            return true;
        }
    }
    return false;
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

bool moveToTrash(const fs::path& item) {
    // GIO takes a relative data directory, which is not valid, as one below the working directory.
    if (g_path_is_absolute(g_get_user_data_dir()) == FALSE) {
        return false;
    }
    const FileDescriptor opened(::open(item.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
    return opened.isOpen() && g_file_trash(fileFor(item).get(), nullptr, nullptr) != FALSE &&
           !undoMoveWithoutNote(opened, item);
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
        return startChildProcess({program.native()}).valid();
    }
    return !isBundle && openWithDefaultApplication(file.native());
}

bool openAddress(const std::string& address) {
    return openWithDefaultApplication(address);
}

} // namespace platform::desktop
