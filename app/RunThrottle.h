#pragma once

#include "platform/UserDefaults.h"

#include <chrono>
#include <functional>
#include <optional>

namespace app {

/// A function that returns the current time.
using Clock = std::function<base::Timestamp()>;

/// Returns the system clock's time.
[[nodiscard]] base::Timestamp currentTime();

/// The helper runs at most once in this time.
inline constexpr std::chrono::hours kRunInterval{4};

/// Returns true if `lastRun` throttles this start: it is less than kRunInterval ago, and not in the
/// future, which happens after the clock was set back. The current time is recent, and exactly
/// kRunInterval ago is not. Reads the clock for each of the two bounds.
[[nodiscard]] bool isRecentRun(const std::optional<base::Timestamp>& lastRun, const Clock& clock);

/// Returns the stored last-run time, or std::nullopt if it is missing.
[[nodiscard]] std::optional<base::Timestamp> lastRunIn(const platform::UserDefaults& defaults);

/// Decides if this start becomes a run. Stores the current time on the disk as the last-run time,
/// under "lastRunUserDefaultKey", before it returns true. Exactly one of several simultaneous
/// starts gets true, and the others return without waiting. If the time cannot be stored, logs one
/// line and returns true.
[[nodiscard]] bool passRunThrottle(const platform::UserDefaults& defaults,
                                   const Clock& clock = currentTime);

} // namespace app
