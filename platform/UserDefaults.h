#pragma once

#include "base/Timestamp.h"
#include "platform/FileLock.h"

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
/// one `key=value` a line, in UTF-8; the first line of a key counts. Only a regular file of up to
/// 64 KiB is read; anything else counts as having no values. On macOS it is the native defaults
/// database.
class UserDefaults {
  public:
    /// @param domain a reverse domain name, usable as a file name. Where its file lies is worked
    /// out once, here.
    explicit UserDefaults(const std::string& domain);

    /// The text under `key`, as it stands; none when there is none.
    [[nodiscard]] std::optional<std::string> text(std::string_view key) const;

    /// The date under `key`; none when there is none or the value is no date. On Linux a date is
    /// written in ISO 8601, UTC, with microseconds.
    [[nodiscard]] std::optional<base::Timestamp> date(std::string_view key) const;

    /// Stores a date under `key`, on the disk before it returns; all other values and lines are
    /// kept. Hold the lock() meanwhile where several processes may store.
    ///
    /// @return why that cannot be done: no or unwritable home, a full disk, or a file that cannot
    /// be read whole and would lose its other values. The stored values are then unchanged.
    [[nodiscard]] std::error_code setDate(std::string_view key, base::Timestamp moment) const;

    /// Where the values are, for people.
    [[nodiscard]] std::string place() const {
        return file_.empty() ? "no place, as the user has no home" : file_.native();
    }

    /// Tries to be the only one that changes this domain. See FileLock.
    [[nodiscard]] FileLock lock() const;

  private:
    std::filesystem::path file_; // empty where the user has no place for it
};

} // namespace platform
