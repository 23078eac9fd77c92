#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <system_error>

/// The system's part of the desktop's services. workspace checks what the network or a user chose.
/// Call every function from any thread.
namespace platform::desktop {

/// Moves an item to the user's Trash. Moves a link itself.
/// @return an empty error, or the system's reason if the item keeps its location.
[[nodiscard]] std::error_code moveToTrash(const std::filesystem::path& item);

/// Looks whether moveToTrash() can move an item there. It may still refuse.
/// @param culprit the path that an error is about.
/// @return why it cannot, or an empty error.
[[nodiscard]] std::error_code checkTrash(const std::filesystem::path& item,
                                         std::filesystem::path& culprit);

/// Asks the desktop to hold the session's end back until the returned object is destroyed. Never
/// waits for the desktop, which may lack the service or not answer. Linux sends one call to GNOME's
/// session manager, `org.gnome.SessionManager`, after a tenth of a second, on a connection to the
/// session bus of its own. macOS needs no call, because a window that refuses to close ends its
/// logout.
/// @param identifier the name of the application's desktop entry.
/// @param reason a text that the desktop shows to the user, in the user's language.
/// @return the hold, or null if the thread for the call cannot be started, and on macOS.
[[nodiscard]] std::shared_ptr<void> holdLogout(const std::string& identifier,
                                               const std::string& reason);

/// Opens a file like a double click. Starts an executable file, or the program of an application
/// bundle (`<name>.app`, see Bundle::executableOf()), as a child process without waiting for its
/// end. Opens any other file with its default application. If the opener is still running after
/// five seconds, the call succeeds with one log line.
/// @return an empty error, or the reason if the file could not be opened.
[[nodiscard]] std::error_code openFile(const std::filesystem::path& file);

/// Opens a web address in the user's browser.
/// @return an empty error, or the reason if no browser could be started.
[[nodiscard]] std::error_code openAddress(const std::string& address);

/// Returns the name of the program that opens addresses, or an empty text if it is missing.
[[nodiscard]] std::string opener();

} // namespace platform::desktop
