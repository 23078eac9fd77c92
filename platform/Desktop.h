#pragma once

#include <filesystem>
#include <string>
#include <system_error>

/// The system's part of workspace, which checks the arguments. Call every function from any thread.
namespace platform::desktop {

/// Gets ready for moves to the Trash: they need no file of this program any more. A failure shows
/// in the move.
void prepareTrash();

/// Moves an item to the user's Trash. Moves a link itself.
/// @return an empty error, or the system's reason if the item keeps its location.
[[nodiscard]] std::error_code moveToTrash(const std::filesystem::path& item);

/// Returns an empty error if the system offers to move an item to the Trash.
[[nodiscard]] std::error_code checkTrash(const std::filesystem::path& item);

/// Opens a file, as workspace::openFile() says.
[[nodiscard]] std::error_code openFile(const std::filesystem::path& file);

/// Opens a web address in the user's browser.
/// @return an empty error, or the reason if no browser could be started.
[[nodiscard]] std::error_code openAddress(const std::string& address);

} // namespace platform::desktop
