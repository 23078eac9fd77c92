#pragma once

#include <cstdint>
#include <filesystem>
#include <system_error>

namespace platform {

/// Returns about the number of bytes that a copy of a file, or of a directory with all its entries,
/// takes on the disk.
[[nodiscard]] std::uintmax_t diskSize(const std::filesystem::path& item);

/// Copies a file, or a directory with all its entries, to a path where nothing may exist. Links
/// stay links, and modes are kept, except that the owner gets all rights on each directory of the
/// copy: a read-only one could otherwise be neither filled nor removed.
///
/// @return why the item could not be copied, or an empty error. A partial copy is removed.
[[nodiscard]] std::error_code copyTree(const std::filesystem::path& source,
                                       const std::filesystem::path& target);

/// Removes a file, a link, or a directory with all its entries, read-only directories included.
/// Only for directories that nobody else can change.
///
/// @return why something is left, or an empty error, also if nothing was there.
std::error_code removeTree(const std::filesystem::path& item);

} // namespace platform
