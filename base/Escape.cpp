#include "base/Escape.h"

#include <algorithm>
#include <bit>
#include <cstddef>
#include <iterator>
#include <utility>

namespace base {
namespace {

constexpr std::string_view kDigits = "0123456789abcdef";

struct Character {
    char32_t code = 0; // a control, for a byte of invalid UTF-8
    std::size_t length = 1;
};

/// Returns the first character of a text, which must not be empty.
Character firstCharacter(std::string_view text) {
    constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    const auto lead = static_cast<unsigned char>(text.front());
    const auto length = static_cast<std::size_t>(std::countl_one(lead));
    if (length == 0) {
        return {lead, 1};
    }
    if (length == 1 || length >= std::size(kSmallest) || length > text.size()) {
        return {};
    }
    char32_t code = lead & (0x7fU >> length);
    for (const char follower : text.substr(1, length - 1)) {
        const auto byte = static_cast<unsigned char>(follower);
        if ((byte & 0xc0U) != 0x80) {
            return {};
        }
        code = code << 6U | (byte & 0x3fU);
    }
    const bool isValid =
        code >= kSmallest[length] && code <= 0x10ffff && (code < 0xd800 || code > 0xdfff);
    return isValid ? Character{code, length} : Character{};
}

/// Returns true if a terminal or a viewer could obey a character instead of showing it.
bool isControl(char32_t code) {
    constexpr std::pair<char32_t, char32_t> kControls[] = {
        {0, 0x1f},        {0x7f, 0x9f},                       // C0, DEL and C1
        {0x2028, 0x2029},                                     // ends of lines and paragraphs
        {0x61c, 0x61c},   {0x200e, 0x200f}, {0x202a, 0x202e}, // the writing's direction
        {0x2066, 0x2069},
    };
    return std::any_of(std::begin(kControls), std::end(kControls), [code](const auto& range) {
        return code >= range.first && code <= range.second;
    });
}

void appendBytes(std::string& result, std::string_view bytes) {
    for (const char each : bytes) {
        const auto byte = static_cast<unsigned char>(each);
        result.append({'\\', 'x', kDigits[byte >> 4U], kDigits[byte & 0xfU]});
    }
}

/// Appends a character as JSON writes it. All controls have at most four hexadecimal digits.
void appendCode(std::string& result, char32_t code) {
    result.append("\\u");
    for (const unsigned shift : {12U, 8U, 4U, 0U}) {
        result.push_back(kDigits[code >> shift & 0xfU]);
    }
}

} // namespace

std::string escaped(std::string_view text, EscapeForm form) {
    constexpr char32_t kFirstPrintable = 0x20;
    std::string result;
    while (!text.empty()) {
        const Character character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.length);
        const bool isLayout = form == EscapeForm::JSON && character.code < kFirstPrintable;
        if (!isControl(character.code) || isLayout) {
            result.append(bytes);
        } else if (form == EscapeForm::JSON) {
            appendCode(result, character.code);
        } else {
            appendBytes(result, bytes);
        }
        text.remove_prefix(bytes.size());
    }
    return result;
}

} // namespace base
