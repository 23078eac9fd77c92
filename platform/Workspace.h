#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

/// What the desktop does for an application. Every function may be called from any thread.
namespace platform::workspace {

/// Gets ready for moves to the Trash, so that they work whatever becomes of this program's own
/// files in the meantime. Once, before anything of them may go away.
void prepareTrash();

/// Moves a file or bundle to the user's Trash, from where it can be restored. Links are moved as
/// links; a trailing slash does not count.
///
/// @return why it was not moved; the item is then where it was. `invalid_argument` when the path
/// has no last name or ends in `.` or `..`; else what the system says: there is no such item, no
/// Trash on its file system, no right to move it, no room to write down where it came from, a
/// relative `XDG_DATA_HOME`.
[[nodiscard]] std::error_code moveToTrash(const std::filesystem::path& path);

/// Whether the system offers to move an item to the Trash; it may still refuse when it is asked to.
/// @return why not, as moveToTrash().
[[nodiscard]] std::error_code checkTrash(const std::filesystem::path& path);

/// Opens a file as a double click would. An executable file and an application bundle
/// (`<name>.app`, by Bundle::executableOf()) are started themselves, detached; anything else goes
/// to its default application. Nothing waits for it to end. What is started is on its own, as
/// startChildProcess() has it. An opener that has not ended after five seconds counts as done, with
/// one log line.
///
/// @return why nothing could be started.
[[nodiscard]] std::error_code openFile(const std::filesystem::path& file);

/// Opens a web address in the user's browser. Addresses come unauthenticated over the network, so
/// only an `http` or `https` URL (see base::URL::make()) of at most 2048 bytes and without user
/// information is opened; any other text logs one line, and so does an address that no browser
/// could be started for. Within five seconds, as openFile().
///
/// @return why it was not opened; `invalid_argument` for what is no such address.
[[nodiscard]] std::error_code openURL(std::string_view address);

} // namespace platform::workspace
