#include "store/Conversions.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace store {
namespace {

constexpr std::string_view kKelvinSign = "\xe2\x84\xaa";

char asciiLowercased(char character) {
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character | 0x20) : character;
}

} // namespace

std::string lowercased(std::string_view text) {
    std::string result(text);
    for (auto at = result.find(kKelvinSign); at != std::string::npos;
         at = result.find(kKelvinSign, at)) {
        result.replace(at, kKelvinSign.size(), "k");
    }
    std::transform(result.begin(), result.end(), result.begin(), asciiLowercased);
    return result;
}

bool flagFromText(std::string_view text) {
    return lowercased(text) == "true";
}

std::uint64_t numberFromText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    // Read with its sign, so that the smallest value has a place.
    const std::string digits =
        (negative ? "-" : "") + std::string(text.substr(0, text.find_first_not_of("0123456789")));
    std::int64_t value = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), value);
    if (result.ec == std::errc::result_out_of_range) {
        using Limits = std::numeric_limits<std::int64_t>;
        value = negative ? Limits::min() : Limits::max();
    }
    return static_cast<std::uint64_t>(value);
}

} // namespace store
