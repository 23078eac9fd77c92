#include "store/ServerDate.h"

#include "base/Timestamp.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <stdexcept>
#include <string>
#include <system_error>
#include <utility>

namespace store {
namespace {

using base::CalendarTime;

constexpr std::string_view kDayPattern = "yyyy-MM-dd";
constexpr std::string_view kTimestampPattern = "yyyy-MM-ddTHH:mm:ss";

constexpr std::array kPatternFields = {
    std::pair{'y', &CalendarTime::year},   std::pair{'M', &CalendarTime::month},
    std::pair{'d', &CalendarTime::day},    std::pair{'H', &CalendarTime::hour},
    std::pair{'m', &CalendarTime::minute}, std::pair{'s', &CalendarTime::second},
};

/// Returns `text` with one byte for each UTF-16 code unit, because server dates count those, and
/// with a blank before each "+". Characters outside ASCII become "?", which fails every pattern.
std::string codeUnits(std::string_view text) {
    std::string units;
    units.reserve(text.size());
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (character == '+') {
            units.push_back(' ');
        }
        if (byte < 0x80) {
            units.push_back(character);
        } else if (byte >= 0xc0) { // a first byte. Characters of four bytes are two units.
            units.append(byte >= 0xf0 ? 2 : 1, '?');
        }
    }
    return units;
}

/// Takes the digits at the start of `text`, at least `least` of them, as one field.
bool takeField(std::string_view& text, std::size_t least, int& field) {
    const auto isDigit = [](char character) { return character >= '0' && character <= '9'; };
    const auto* const end = std::find_if_not(text.begin(), text.end(), isDigit);
    const auto count = static_cast<std::size_t>(end - text.begin());
    const auto result = std::from_chars(text.begin(), end, field);
    text.remove_prefix(count);
    return count >= least && result.ec == std::errc();
}

Date readByPattern(std::string_view text, std::string_view pattern) {
    CalendarTime time;
    while (!pattern.empty()) {
        const char letter = pattern.front();
        const auto* field = std::find_if(kPatternFields.begin(), kPatternFields.end(),
                                         [=](const auto& entry) { return entry.first == letter; });
        std::size_t width = 1;
        if (field != kPatternFields.end()) {
            width = std::min(pattern.find_first_not_of(letter), pattern.size());
            if (!takeField(text, width, time.*field->second)) {
                return std::nullopt;
            }
        } else if (text.starts_with(letter)) {
            text.remove_prefix(1);
        } else {
            return std::nullopt;
        }
        pattern.remove_prefix(width);
    }
    return text.empty() ? base::pointInTime(time) : std::nullopt;
}

} // namespace

Date dateFromText(std::string_view text) {
    constexpr std::size_t kShown = 100; // bytes of a text in a message
    std::string copy = codeUnits(text);
    if (const auto point = copy.find('.'); point != std::string::npos) {
        copy.erase(point, 4);
    }
    const auto zone = copy.find('Z');
    if (zone == std::string::npos) {
        throw std::out_of_range("cannot read a date without \"Z\": \"" +
                                std::string(text.substr(0, kShown)) + "\"");
    }
    copy.erase(zone, 1);
    return readByPattern(copy, copy.size() < 11 ? kDayPattern : kTimestampPattern);
}

} // namespace store
