#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// A point in time (UTC) to the microsecond: what user defaults store.
using Timestamp = std::chrono::sys_time<std::chrono::microseconds>;

/// A calendar date and a time of day as a text named them, not yet checked.
struct CalendarTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// The point in time of a Gregorian calendar time in GMT, or none when a field is out of range:
/// year 1 to 9999, month, day of that month, hour 0 to 23, minute and second 0 to 59.
[[nodiscard]] std::optional<std::chrono::sys_seconds> pointInTime(const CalendarTime& time);

/// `moment` in ISO 8601, UTC: "2026-01-31T08:30:00Z". Years beyond 1 to 9999 are not expected.
[[nodiscard]] std::string timestampText(std::chrono::sys_seconds moment);

/// The same with microseconds: "2026-01-31T08:30:00.000001Z".
[[nodiscard]] std::string timestampText(Timestamp moment);

/// Reads exactly the form that timestampText(Timestamp) writes; anything else is none.
[[nodiscard]] std::optional<Timestamp> timestampFromText(std::string_view text);

} // namespace base
