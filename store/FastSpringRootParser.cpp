#include "store/FastSpringRootParser.h"

#include "platform/DateText.h"
#include "store/Conversions.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <system_error>
#include <utility>

namespace store {
namespace {

using platform::CalendarTime;

constexpr std::string_view kDayPattern = "yyyy-MM-dd";
constexpr std::string_view kTimestampPattern = "yyyy-MM-ddTHH:mm:ss";

constexpr std::array kPatternFields = {
    std::pair{'y', &CalendarTime::year},   std::pair{'M', &CalendarTime::month},
    std::pair{'d', &CalendarTime::day},    std::pair{'H', &CalendarTime::hour},
    std::pair{'m', &CalendarTime::minute}, std::pair{'s', &CalendarTime::second},
};

/// `text` with one byte for each UTF-16 code unit, in which server dates count their characters.
/// What is not ASCII matches no pattern, so any one byte can stand for it.
std::string codeUnits(std::string_view text) {
    const auto isASCII = [](char character) { return static_cast<signed char>(character) >= 0; };
    if (std::all_of(text.begin(), text.end(), isASCII)) {
        return std::string(text);
    }
    std::string units;
    for (const char character : text) {
        const auto byte = static_cast<unsigned char>(character);
        if (byte < 0x80) {
            units.push_back(character);
        } else if (byte >= 0xc0) { // the first byte of a character; four-byte ones are two units
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
    return text.empty() ? platform::pointInTime(time) : std::nullopt;
}

} // namespace

FastSpringRootParser::FastSpringRootParser(std::string_view data) : parser_(data) {}

Date FastSpringRootParser::fromServerDate(std::string_view text) {
    std::string copy = codeUnits(text);
    for (auto at = copy.find('+'); at != std::string::npos; at = copy.find('+', at + 2)) {
        copy.insert(at, 1, ' ');
    }
    if (const auto point = copy.find('.'); point != std::string::npos) {
        copy.erase(point, 4);
    }
    // Not looked for first: a text without "Z" fails here, at the not-found position.
    copy.erase(copy.find('Z'), 1);
    return readByPattern(copy, copy.size() < 11 ? kDayPattern : kTimestampPattern);
}

bool FastSpringRootParser::checkForErrors(std::string_view elementName,
                                          const platform::XMLAttributes& /*attributes*/) {
    if (elementName != "html") {
        return false;
    }
    isHTMLServerError = true;
    return true;
}

bool FastSpringRootParser::cleanUpAnyErrors(std::string_view /*elementName*/) const {
    return isHTMLServerError;
}

void FastSpringRootParser::didStartElement(std::string_view elementName,
                                           const platform::XMLAttributes& attributes) {
    lowercase(elementName, elementName_);
    if (checkForErrors(elementName_, attributes) || startContainer(elementName_)) {
        return;
    }
    accumulatingParsedCharacterData_ = true;
    currentParsedCharacterData_.clear();
}

void FastSpringRootParser::didEndElement(std::string_view elementName) {
    lowercase(elementName, elementName_);
    if (cleanUpAnyErrors(elementName_)) {
        return;
    }
    endElement(elementName_, currentParsedCharacterData_);
    accumulatingParsedCharacterData_ = false;
}

void FastSpringRootParser::foundCharacters(std::string_view characters) {
    if (accumulatingParsedCharacterData_) {
        currentParsedCharacterData_.append(characters);
    }
}

void FastSpringRootParser::parseErrorOccurred() {
    isParsingError = true;
}

void FastSpringRootParser::parse() {
    parser_.parse(*this);
}

} // namespace store
