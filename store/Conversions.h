#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// Conversions of an answer's texts to values. They depend only on their arguments, in any locale.
namespace store {

/// Lowercases an element name or a flag's text: the ASCII letters, and U+212A KELVIN SIGN, the only
/// other character that lowercases to a letter in use. Other characters stay.
void lowercase(std::string& text);

/// Returns true if the lowercased text is exactly "true". Blanks around it count as characters.
[[nodiscard]] bool flagFromText(std::string_view text);

/// Returns the text's number: leading white space, a sign, and decimal digits up to the first other
/// character. The number saturates as a signed 64-bit integer, and is 0 if the digits are missing.
/// The result has its 64 bits: "-1" gives 18446744073709551615.
[[nodiscard]] std::uint64_t numberFromText(std::string_view text);

} // namespace store
