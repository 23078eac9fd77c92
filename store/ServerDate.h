#pragma once

#include "store/FieldTypes.h"

#include <string_view>

namespace store {

/// Reads a date text of the store service: a timestamp "2026-01-31T08:30:00Z" or a day
/// "2026-01-31Z", both in GMT by the Gregorian calendar. A day gives its first second.
///
/// The first point goes together with the three characters after it, then the first "Z", wherever
/// it stands; what is left must be a day (fewer than 11 characters) or a timestamp from end to end.
/// A number may have more digits than shown: of a fraction with more than three the others lengthen
/// the seconds, so that "08:30:00.00005Z" is second 5. Any other text with a "Z" left to take gives
/// none. Characters are UTF-16 code units. In one pass, whatever the text holds.
///
/// @throws std::out_of_range, with the start of the text in its message, when no "Z" is left: a
/// text without one, an empty one, a fraction of one or two digits.
[[nodiscard]] Date dateFromText(std::string_view text);

} // namespace store
