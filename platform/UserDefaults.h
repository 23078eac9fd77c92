#pragma once

#include "base/Timestamp.h"
#include "platform/FileLock.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <system_error>

namespace platform {

/// The user's defaults of one domain: values by key, kept on the disk and shared by all processes
/// of the user. No value is held in memory: each call reads the disk.
///
/// On Linux the domain is the file `$XDG_CONFIG_HOME/<domain>.conf` (`~/.config` by default) with
/// one `key=value` per line, in UTF-8 with or without a byte order mark. Blanks around `=` do not
/// count, and neither do blanks at the end of a line. The first line of a key counts. Only a
/// regular file of limited size is read. On macOS the domain is the native defaults database.
class UserDefaults {
  public:
    /// @param domain a reverse domain name, usable as a file name. Its file's path is determined
    /// once, here.
    explicit UserDefaults(const std::string& domain);

    /// Returns the text under `key`, or std::nullopt if the key or the file is missing.
    /// @param limit the largest file that is read, in bytes (Linux).
    /// @param error why an existing file could not be read, or empty.
    [[nodiscard]] std::optional<std::string> text(std::string_view key, std::size_t limit,
                                                  std::error_code& error) const;

    /// Returns the date under `key`, or std::nullopt if the key is missing, its value is another
    /// text, or the file cannot be read. On Linux the file may have 64 KiB, and a date is written
    /// in ISO 8601, UTC, with microseconds.
    [[nodiscard]] std::optional<base::Timestamp> date(std::string_view key) const;

    /// Stores a date under `key` and flushes it to the disk. All other values and lines are kept.
    /// Hold the lock() if several processes may store.
    ///
    /// @return an empty error, or the reason if the stored values are unchanged: a missing or
    /// unwritable home, a full disk, or an unreadable file that would lose its other values.
    [[nodiscard]] std::error_code setDate(std::string_view key, base::Timestamp moment) const;

    /// Returns why setDate() would fail, or an empty error. On Linux it writes the new file and
    /// removes it again. The stored values stay unchanged. Hold the lock() meanwhile.
    [[nodiscard]] std::error_code checkStoring() const;

    /// Returns the path of the stored values, for people.
    [[nodiscard]] std::string location() const {
        return file_.empty() ? "no file, because the user has no home" : file_.native();
    }

    /// Tries to lock this domain against changes by other processes. See FileLock.
    [[nodiscard]] FileLock lock() const;

  private:
    std::filesystem::path file_; // empty if the user has no home
};

} // namespace platform
