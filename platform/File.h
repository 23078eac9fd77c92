#pragma once

#include "base/Data.h"

#include <cstddef>
#include <filesystem>
#include <string_view>
#include <system_error>

namespace platform {

/// Returns the content of a regular file of at most `limit` bytes. Follows links, and never waits
/// for a FIFO or a device.
///
/// @param error cleared on success. Otherwise the result is empty and `error` has the reason, such
/// as `file_too_large`, or `not_supported` if the file is not regular.
[[nodiscard]] base::Data readRegularFile(const std::filesystem::path& path, std::size_t limit,
                                         std::error_code& error);

/// Replaces the content of the file at `path`, with mode 0600. At every moment, and after a crash,
/// the path has either the old or the new content. The content is written to `path` + ".new",
/// flushed, and renamed, and the directory is flushed. A link at `path` is followed and stays a
/// link. Only one writer per path may run at a time.
///
/// @return an empty error, or the reason if the old file is unchanged. If only the flush of the
/// directory failed, the file is replaced, but a crash may restore the old one.
[[nodiscard]] std::error_code replaceFile(const std::filesystem::path& path,
                                          std::string_view content);

/// Does the part of replaceFile() before the rename, then removes the new file.
/// @return why it failed, or an empty error. The file at `path` is unchanged.
[[nodiscard]] std::error_code checkReplacement(const std::filesystem::path& path,
                                               std::string_view content);

} // namespace platform
