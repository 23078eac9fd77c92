#pragma once

#include <filesystem>
#include <map>
#include <string>
#include <string_view>

namespace platform {

/// A strings table by key, both in UTF-8.
using StringsTable = std::map<std::string, std::string, std::less<>>;

/// Reads a `.strings` file: `key = "value";` entries with quoted or bare keys and values,
/// slash-star and double-slash comments, and the escapes `\n \t \r \f \b \a \v \" \' \\ \NNN`
/// (octal) and `\UXXXX` (a UTF-16 code unit). In an entry without a value (`key;`), the key is also
/// the value. If a key occurs twice, the first entry counts. The file has at most 1 MiB, in UTF-8
/// or in UTF-16 with a byte order mark.
///
/// If the file is unreadable or has an error, the result is empty, and one log line names the file,
/// the line and the expected text.
[[nodiscard]] StringsTable readStringsTable(const std::filesystem::path& path);

/// Reads a table from its text. `name` replaces the file's path in the log.
[[nodiscard]] StringsTable parseStringsTable(std::string_view bytes, std::string_view name);

} // namespace platform
