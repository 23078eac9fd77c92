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
/// (octal) and
/// `\UXXXX` (a UTF-16 code unit). An entry without a value (`key;`) stands for itself; of a key
/// that occurs twice the first entry counts. The file is UTF-8, or UTF-16 with a byte order mark,
/// of at most 1 MiB.
///
/// A file that cannot be read or holds an error gives an empty table and logs one line with the
/// file, the line and what was expected.
[[nodiscard]] StringsTable readStringsTable(const std::filesystem::path& path);

/// The same for the text of a table. `name` stands for the file in the log.
[[nodiscard]] StringsTable parseStringsTable(std::string_view bytes, std::string_view name);

} // namespace platform
