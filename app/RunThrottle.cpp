#include "app/RunThrottle.h"

#include "platform/Log.h"

#include <system_error>

namespace app {
namespace {

constexpr std::string_view kLastRun = "lastRunUserDefaultKey";

} // namespace

base::Timestamp currentTime() {
    return std::chrono::floor<base::Timestamp::duration>(std::chrono::system_clock::now());
}

bool isRecentRun(const std::optional<base::Timestamp>& lastRun, const Clock& clock) {
    return lastRun && *lastRun - clock() > -kRunInterval &&
           *lastRun - clock() <= base::Timestamp::duration::zero();
}

std::optional<base::Timestamp> lastRunIn(const platform::UserDefaults& defaults) {
    return defaults.date(kLastRun);
}

bool passRunThrottle(const platform::UserDefaults& defaults, const Clock& clock) {
    // Hold the lock until the time is stored, because another start must not read the old one.
    const platform::FileLock lock = defaults.lock();
    if (lock.error() == std::errc::operation_would_block ||
        isRecentRun(lastRunIn(defaults), clock)) {
        return false;
    }
    if (const auto error = defaults.setDate(kLastRun, clock())) {
        platform::log("The time of this run cannot be stored: %@", {error.message()});
    }
    return true;
}

} // namespace app
