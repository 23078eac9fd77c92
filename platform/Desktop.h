#pragma once

#include <filesystem>
#include <string>

/// What each system does in its own way for workspace, which decides what is asked for. Every
/// function may be called from any thread.
namespace platform::desktop {

/// Moves an item to the user's Trash; a link as a link. Gives false, with the item where it was,
/// when the system refuses.
[[nodiscard]] bool moveToTrash(const std::filesystem::path& item);

/// Opens a file, as workspace::openFile() says.
[[nodiscard]] bool openFile(const std::filesystem::path& file);

/// Opens a web address in the user's browser. Gives whether one could be started.
[[nodiscard]] bool openAddress(const std::string& address);

} // namespace platform::desktop
