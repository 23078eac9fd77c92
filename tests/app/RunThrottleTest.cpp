#include "app/RunThrottle.h"

#include "tests/support/TestHome.h"

#include <chrono>

#include <gtest/gtest.h>

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
    // The second reading is later: a moment just in the future at the first is past at the second.
    Timestamp now = kNow;
    const auto clock = [&now] { return now += 2us; };
    EXPECT_TRUE(isRecentRun(kNow + 3us, clock));
}

TEST(RunThrottle, StoresTheMomentOfARunThatPassesAndOfNoOther) {
    const test::TestHome home;
    const platform::UserDefaults defaults("com.example.throttle");
    const char* const key = "lastRunUserDefaultKey";
    EXPECT_TRUE(passRunThrottle(defaults, fixedNow));
    EXPECT_EQ(defaults.date(key), kNow);
    const auto later = [](Timestamp::duration by) { return [by] { return kNow + by; }; };
    EXPECT_FALSE(passRunThrottle(defaults, later(4h - 1us)));
    EXPECT_EQ(defaults.date(key), kNow);
    EXPECT_TRUE(passRunThrottle(defaults, later(4h)));
    EXPECT_EQ(defaults.date(key), kNow + 4h);
    EXPECT_TRUE(passRunThrottle(defaults, fixedNow)); // the clock was set back
    EXPECT_EQ(defaults.date(key), kNow);

    const auto held = defaults.lock();
    EXPECT_FALSE(passRunThrottle(defaults, later(8h)));
    EXPECT_EQ(defaults.date(key), kNow);
}

} // namespace
} // namespace app
