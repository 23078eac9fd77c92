#include "store/Conversions.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

namespace store {
namespace {

constexpr std::string_view kKelvinSign = "\xe2\x84\xaa";

/// Replaces the signs in one pass, to stay linear if a text contains only signs.
void replaceKelvinSigns(std::string& text) {
    std::size_t to = 0;
    for (std::size_t from = 0; from < text.size(); ++to) {
        const bool found = text.compare(from, kKelvinSign.size(), kKelvinSign) == 0;
        text[to] = found ? 'k' : text[from];
        from += found ? kKelvinSign.size() : 1;
    }
    text.resize(to);
}

} // namespace

void lowercase(std::string& text) {
    unsigned all = 0;
    for (char& character : text) {
        const unsigned byte = static_cast<unsigned char>(character);
        all |= byte;
        character = static_cast<char>(byte | (byte - unsigned{'A'} < 26U ? 0x20U : 0U));
    }
    if (all >= 0x80) { // rare: names are ASCII
        replaceKelvinSigns(text);
    }
}

bool flagFromText(std::string_view text) {
    constexpr std::string_view kTrue = "true";
    // Compare the length first to avoid copying long texts. Every spelling of "true" has four
    // bytes.
    if (text.size() != kTrue.size()) {
        return false;
    }
    std::string flag(text);
    lowercase(flag);
    return flag == kTrue;
}

std::uint64_t numberFromText(std::string_view text) {
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool negative = text.starts_with('-');
    if (negative || text.starts_with('+')) {
        text.remove_prefix(1);
    }
    // Read the digits together with the sign, because the smallest value has no positive opposite.
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
