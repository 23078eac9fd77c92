#pragma once

#include <filesystem>
#include <string_view>

/// What the desktop does for an application. Every function may be called from any thread.
namespace platform::workspace {

/// Moves the entry `name` of `directory` to the user's Trash, from where it can be restored. Links
/// are moved as links. Gives false, with the entry where it was, when the platform refuses:
/// `name` is no plain file name, there is no such entry, no Trash on its file system, no right to
/// move it, no room to write down where it came from, a relative `XDG_DATA_HOME`.
[[nodiscard]] bool recycle(const std::filesystem::path& directory,
                           const std::filesystem::path& name);

/// Opens a file as a double click would. An executable file and an application bundle
/// (`<name>.app`, by Bundle::executableOf()) are started themselves, detached; anything else goes
/// to its default application. Gives whether that could be started; nothing waits for it to end.
/// What is started is on its own, as startChildProcess() has it. An opener that has not ended after
/// five seconds counts as done, with one log line.
[[nodiscard]] bool openFile(const std::filesystem::path& file);

/// Opens a web address in the user's browser. Addresses come unauthenticated over the network, so
/// only what webAddress() takes is opened; any other text logs one line, and so does an address
/// that no browser could be started for. Gives whether one could. Within five seconds, as
/// openFile().
[[nodiscard]] bool openURL(std::string_view address);

} // namespace platform::workspace
