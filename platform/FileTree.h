#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace platform {

/// Returns the approximate number of bytes on the disk for a copy of a file, or of a directory with
/// all its entries.
[[nodiscard]] std::uintmax_t diskSize(const std::filesystem::path& item);

/// Copies a file, or a directory with all its entries, to a path where nothing may exist. Links
/// stay links, and modes are kept, except that the owner gets all rights on each directory of the
/// copy: a read-only one could otherwise be neither filled nor removed.
///
/// @return an empty error, or the reason if the copy failed. A partial copy is removed.
[[nodiscard]] std::error_code copyTree(const std::filesystem::path& source,
                                       const std::filesystem::path& target);

/// Removes a file, a link, or a directory with all its entries, read-only directories included.
/// Only for directories that nobody else can change.
///
/// @return an empty error if the item is gone or never existed, otherwise the reason.
std::error_code removeTree(const std::filesystem::path& item);

} // namespace platform
