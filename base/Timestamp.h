#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>

namespace base {

/// A point in time (UTC) in microseconds, the form in which user defaults store times.
using Timestamp = std::chrono::sys_time<std::chrono::microseconds>;

/// The unchecked calendar date and time of day from a text.
struct CalendarTime {
    int year = 0;
    int month = 0;
    int day = 0;
    int hour = 0;
    int minute = 0;
    int second = 0;
};

/// Returns the point in time of a Gregorian calendar time in GMT, or std::nullopt if a field is out
/// of range: year 1 to 9999, month, day of that month, hour 0 to 23, minute and second 0 to 59.
[[nodiscard]] std::optional<std::chrono::sys_seconds> pointInTime(const CalendarTime& time);

/// Returns a time in ISO 8601 and UTC: "2026-01-31T08:30:00Z".
/// @param time has a year from 1 to 9999.
[[nodiscard]] std::string timestampText(std::chrono::sys_seconds time);

/// Returns a time with microseconds: "2026-01-31T08:30:00.000001Z".
/// @param time has a year from 1 to 9999.
[[nodiscard]] std::string timestampText(Timestamp time);

/// Reads exactly the form that timestampText(Timestamp) writes. Returns std::nullopt for any other
/// text.
[[nodiscard]] std::optional<Timestamp> timestampFromText(std::string_view text);

} // namespace base
