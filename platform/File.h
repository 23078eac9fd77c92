#pragma once

#include "base/Data.h"

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace platform {

/// The whole content of a regular file of at most `limit` bytes; links are followed. Empty, with
/// the reason in `error`, when there is no such file, it cannot be read, it is larger
/// (`file_too_large`), or it is not a regular file (`not_supported`; a FIFO or a device is never
/// waited for). `error` is cleared otherwise.
[[nodiscard]] base::Data readRegularFile(const std::filesystem::path& path, std::size_t limit,
                                         std::error_code& error);

/// Replaces the file at `path` by one that holds `content`, mode 0600, so that at every moment, and
/// after a crash, the path holds either the old content or the new: written to `path` + ".new",
/// flushed to the disk, renamed, and the directory flushed. A link at `path` is followed, so that
/// it stays a link. Of several writers of one path only one may run at a time.
///
/// @return why it could not be replaced: the old file is then unchanged. When only the flush of the
/// directory failed it is replaced, and may be the old one again after a crash.
[[nodiscard]] std::error_code replaceFile(const std::filesystem::path& path,
                                          std::string_view content);

} // namespace platform
