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

/// Looks whether moveToTrash() can move an item there. It may still refuse.
/// @param culprit the path that an error is about.
/// @return why it cannot, or an empty error.
[[nodiscard]] std::error_code checkTrash(const std::filesystem::path& item,
                                         std::filesystem::path& culprit);

/// Opens a file, as workspace::openFile() says.
[[nodiscard]] std::error_code openFile(const std::filesystem::path& file);

/// Opens a web address in the user's browser.
/// @return an empty error, or the reason if no browser could be started.
[[nodiscard]] std::error_code openAddress(const std::string& address);

/// Returns the name of the program that opens addresses, or an empty text if it is missing.
[[nodiscard]] std::string opener();

} // namespace platform::desktop
