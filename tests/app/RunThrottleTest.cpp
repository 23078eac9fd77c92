#include "app/RunThrottle.h"

#include "tests/support/Test.h"

namespace app {
namespace {

using namespace std::chrono_literals;
using base::Timestamp;

const Timestamp kNow = base::timestampFromText("2026-03-15T08:30:00.000000Z").value();

Timestamp fixedNow() {
    return kNow;
}

TEST(RunThrottle, CountsARunAsRecentWithinItsBounds) {
    const std::pair<Timestamp::duration, bool> rows[] = {
        {0us, true},        {-1us, true}, {-4h + 1us, true}, {-4h, false},
        {-4h - 1us, false}, {1us, false}, {24h, false},      {-365 * 24h, false},
    };
    for (const auto& [distance, recent] : rows) {
        EXPECT_EQ(isRecentRun(kNow + distance, fixedNow), recent) << distance.count();
    }
    EXPECT_FALSE(isRecentRun(std::nullopt, fixedNow));
}

TEST(RunThrottle, ReadsTheClockForEachBound) {
    // A time just after the first reading of the clock is past at the second, later reading.
    Timestamp now = kNow;
    const auto clock = [&now] { return now += 2us; };
    EXPECT_TRUE(isRecentRun(kNow + 3us, clock));
}

TEST(RunThrottle, StoresTheMomentOfARunThatPassesAndOfNoOther) {
    const test::TestHome home;
    std::filesystem::remove_all(test::TestHome::path() / "config");
    const platform::UserDefaults defaults("com.example.throttle");
    Timestamp last = kNow;
    const std::pair<Timestamp::duration, bool> starts[] = {
        {0h, true}, {4h - 1us, false}, {4h, true}, {0h, true}, // the clock was set back
    };
    for (const auto& [time, passes] : starts) {
        EXPECT_EQ(passRunThrottle(defaults, [start = kNow + time] { return start; }), passes);
        last = passes ? kNow + time : last;
        EXPECT_EQ(defaults.date("lastRunUserDefaultKey"), last);
    }
    const auto held = defaults.lock();
    EXPECT_FALSE(passRunThrottle(defaults, [] { return kNow + 8h; }));
    EXPECT_EQ(defaults.date("lastRunUserDefaultKey"), last);
}

} // namespace
} // namespace app
