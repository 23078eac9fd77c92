#pragma once

#include <filesystem>
#include <string>
#include <system_error>

/// What each system does in its own way for workspace, which decides what is asked for. Every
/// function may be called from any thread.
namespace platform::desktop {

/// Gets ready for moves to the Trash: they need no file of this program any more. A failure shows
/// in the move.
void prepareTrash();

/// Moves an item to the user's Trash; a link as a link.
/// @return why the system refuses; the item is then where it was.
[[nodiscard]] std::error_code moveToTrash(const std::filesystem::path& item);

/// Whether it offers to move an item there.
[[nodiscard]] std::error_code checkTrash(const std::filesystem::path& item);

/// Opens a file, as workspace::openFile() says.
[[nodiscard]] std::error_code openFile(const std::filesystem::path& file);

/// Opens a web address in the user's browser.
/// @return why none could be started.
[[nodiscard]] std::error_code openAddress(const std::string& address);

} // namespace platform::desktop
