#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

namespace platform {

/// Returns the path `name` in a private directory from which programs can be started and which has
/// `bytes` bytes free, or std::nullopt if no location qualifies. Removes an earlier entry of that
/// name before it measures the free space. An entry that cannot be removed stays.
///
/// The directory is `<owner>-<uid>` in the first suitable location of `$TMPDIR`,
/// `$XDG_RUNTIME_DIR`, `/tmp` and `~/.cache`. If another kind of entry has that name, `-1` to `-99`
/// follow it. The directory is made with mode 0700, and later calls find it again. A location is
/// suitable if its path is absolute, its file system allows execution, and only the user and root
/// can change it and the directories above it, unless they are sticky. Nobody else can therefore
/// exchange a checked file before it is started.
///
/// @param owner a plain file name that no other program uses.
/// @param name a plain file name.
[[nodiscard]] std::optional<std::filesystem::path>
replaceableTemporaryFile(const std::string& owner, const std::string& name, std::uintmax_t bytes);

/// Returns the path that replaceableTemporaryFile() would return, or std::nullopt. An earlier entry
/// of that name stays, and its bytes count as free.
[[nodiscard]] std::optional<std::filesystem::path>
checkedTemporaryFile(const std::string& owner, const std::string& name, std::uintmax_t bytes);

} // namespace platform
