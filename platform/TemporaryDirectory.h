#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>

namespace platform {

/// A directory for programs that are started from it, which belongs to the user alone and where
/// `room` bytes are free; none when there is no place for one.
///
/// It is `subscription-helper-<uid>` in the first that will do of `$TMPDIR`, `$XDG_RUNTIME_DIR`,
/// `/tmp` and `~/.cache`; where that name is taken by anything else than a private directory of the
/// user's, the name with `-1` to `-99` after it. It is made with mode 0700 and found again by later
/// calls. A place does when its path is absolute, programs may be started from its file system, and
/// neither it nor a directory above it can be changed by a group or by others without the sticky
/// bit: so nobody else can exchange what was checked before it is started.
[[nodiscard]] std::optional<std::filesystem::path> userTemporaryDirectory(std::uintmax_t room);

} // namespace platform
