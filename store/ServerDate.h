#pragma once

#include "store/FieldTypes.h"

#include <string_view>

namespace store {

/// Reads a date text of the store service: a timestamp "2026-01-31T08:30:00Z" or a day
/// "2026-01-31Z", both in GMT and the Gregorian calendar. A day gives its first second.
///
/// First, the first point and the three characters after it are removed, then the first "Z" at any
/// position. The rest must be exactly a day (fewer than 11 characters) or a timestamp. Its numbers
/// may have further digits. The digits of a fraction after the third therefore extend the seconds:
/// "08:30:00.00005Z" is second 5. Characters are UTF-16 code units. The time is linear for any
/// text.
///
/// @return std::nullopt for other texts that have a "Z" to remove.
/// @throws std::out_of_range, with the start of the text in its message, if the "Z" is missing
/// after the first step: in a text without "Z", an empty text, a fraction of one or two digits.
[[nodiscard]] Date dateFromText(std::string_view text);

} // namespace store
