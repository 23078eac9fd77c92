#include "base/Timestamp.h"

#include <charconv>
#include <cstdio>

namespace base {
namespace {

using namespace std::chrono;

constexpr std::string_view kShape = "dddd-dd-ddTdd:dd:dd.ddddddZ";

bool hasShape(std::string_view text) {
    if (text.size() != kShape.size()) {
        return false;
    }
    for (std::size_t at = 0; at < text.size(); ++at) {
        const bool digit = text[at] >= '0' && text[at] <= '9';
        if (kShape[at] == 'd' ? !digit : text[at] != kShape[at]) {
            return false;
        }
    }
    return true;
}

int digits(std::string_view text, std::size_t at, std::size_t count) {
    int value = 0;
    std::from_chars(text.data() + at, text.data() + at + count, value);
    return value;
}

} // namespace

std::optional<sys_seconds> pointInTime(const CalendarTime& time) {
    const auto within = [](int value, int least, int most) {
        return value >= least && value <= most;
    };
    // Check the ranges first, because std::chrono's month and day keep only one byte of a number.
    if (!within(time.year, 1, 9999) || !within(time.month, 1, 12) || !within(time.day, 1, 31) ||
        !within(time.hour, 0, 23) || !within(time.minute, 0, 59) || !within(time.second, 0, 59)) {
        return std::nullopt;
    }
    const year_month_day date{year{time.year}, month{static_cast<unsigned>(time.month)},
                              day{static_cast<unsigned>(time.day)}};
    if (!date.ok()) {
        return std::nullopt;
    }
    return sys_days{date} + hours{time.hour} + minutes{time.minute} + seconds{time.second};
}

std::string timestampText(sys_seconds time) {
    const auto midnight = floor<days>(time);
    const year_month_day date{midnight};
    const hh_mm_ss timeOfDay{time - midnight};
    char text[64];
    const int length = std::snprintf(text, sizeof text, "%04d-%02u-%02uT%02d:%02d:%02dZ",
                                     int{date.year()}, unsigned{date.month()}, unsigned{date.day()},
                                     static_cast<int>(timeOfDay.hours().count()),
                                     static_cast<int>(timeOfDay.minutes().count()),
                                     static_cast<int>(timeOfDay.seconds().count()));
    return {text, static_cast<std::size_t>(length)};
}

std::string timestampText(Timestamp time) {
    const auto second = floor<seconds>(time);
    char fraction[16];
    std::snprintf(fraction, sizeof fraction, ".%06dZ", static_cast<int>((time - second).count()));
    std::string text = timestampText(second);
    text.pop_back();
    return text + fraction;
}

std::optional<Timestamp> timestampFromText(std::string_view text) {
    if (!hasShape(text)) {
        return std::nullopt;
    }
    const auto second =
        pointInTime({digits(text, 0, 4), digits(text, 5, 2), digits(text, 8, 2),
                     digits(text, 11, 2), digits(text, 14, 2), digits(text, 17, 2)});
    if (!second) {
        return std::nullopt;
    }
    return *second + microseconds{digits(text, 20, 6)};
}

} // namespace base
