#pragma once

#include <filesystem>
#include <optional>

namespace platform {

/// A directory for temporary files that belongs to the user alone, or none when there is no such
/// directory.
///
/// On Linux `subscription-helper-<uid>` in `$TMPDIR` (when that is an absolute path) or `/tmp`,
/// created with mode 0700. A directory that is found there is taken only if it is a real directory
/// and not a link, is owned by the user, and grants nothing to group or others: anything else may
/// have been planted to have a foreign program started.
[[nodiscard]] std::optional<std::filesystem::path> userTemporaryDirectory();

} // namespace platform
