#pragma once

#include "base/Timestamp.h"

#include <cmath>
#include <optional>

namespace platform {

/// The seconds from 1970 to 2001, where CoreFoundation's absolute time begins.
constexpr double kBeginning = 978307200;

/// Returns a point in time in CoreFoundation's absolute time: seconds since 2001, GMT.
[[nodiscard]] constexpr double absoluteTime(base::Timestamp moment) {
    return std::chrono::duration<double>(moment.time_since_epoch()).count() - kBeginning;
}

/// Returns the point in time of an absolute time, rounded to microseconds, or std::nullopt if the
/// time is before 1970, after 9999 or no number.
[[nodiscard]] inline std::optional<base::Timestamp> timestampOf(double time) {
    constexpr double kEnd = 253402300800; // the year 10000
    const double seconds = time + kBeginning;
    if (!(seconds >= 0 && seconds < kEnd)) {
        return std::nullopt;
    }
    return base::Timestamp(std::chrono::microseconds(std::llround(seconds * std::micro::den)));
}

} // namespace platform
