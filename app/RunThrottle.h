#pragma once

#include "platform/UserDefaults.h"

#include <chrono>
#include <functional>
#include <optional>

namespace app {

/// A source of the present moment.
using Clock = std::function<base::Timestamp()>;

/// The system's clock.
[[nodiscard]] base::Timestamp presentMoment();

/// The helper works at most once in this time.
inline constexpr std::chrono::hours kRunInterval{4};

/// Whether `lastRun` is so recent that the helper does not work again: less than kRunInterval ago,
/// and not in the future (as after a clock was set back). Exactly kRunInterval ago is not recent;
/// the present moment is. Reads the clock anew for each of the two bounds.
[[nodiscard]] bool isRecentRun(const std::optional<base::Timestamp>& lastRun, const Clock& clock);

/// The moment of the last run that was stored; none when there is none.
[[nodiscard]] std::optional<base::Timestamp> lastRunIn(const platform::UserDefaults& defaults);

/// Decides whether this start goes on, and if so stores the present moment as that of the last run
/// under "lastRunUserDefaultKey", on the disk, before it returns. Of any number of simultaneous
/// starts exactly one goes on; none ever waits for another. A moment that cannot be stored is
/// logged, and the run goes on.
[[nodiscard]] bool passRunThrottle(const platform::UserDefaults& defaults,
                                   const Clock& clock = presentMoment);

} // namespace app
