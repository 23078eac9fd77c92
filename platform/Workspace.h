#pragma once

#include <filesystem>
#include <string_view>
#include <system_error>

/// Services of the desktop for an application. Call every function from any thread.
namespace platform::workspace {

/// Moves a file or bundle to the user's Trash, so that it can be restored. Moves a link itself, and
/// ignores a trailing slash.
///
/// @return an empty error, or the reason if the item keeps its location. `invalid_argument` if the
/// path lacks a last name or ends in `.` or `..`, or if `XDG_DATA_HOME` is relative. Otherwise the
/// system's reason: the item, the Trash or the permission is missing, or the restore path could not
/// be written.
[[nodiscard]] std::error_code moveToTrash(const std::filesystem::path& path);

/// Opens a web address in the user's browser, within five seconds as desktop::openFile(). Addresses
/// arrive unauthenticated over the network. Only an `http` or `https` URL (see base::URL::make())
/// of at most 2048 bytes, without user information, is opened. Any other text logs one line. If a
/// browser cannot be started, one line says why.
///
/// @return an empty error, or the reason. `invalid_argument` if the text is not such an address.
[[nodiscard]] std::error_code openURL(std::string_view address);

/// Returns true if openURL() would open an address, as far as the address decides.
[[nodiscard]] bool isOpenable(std::string_view address);

} // namespace platform::workspace
