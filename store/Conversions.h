#pragma once

#include <cstdint>
#include <string>
#include <string_view>

/// How texts of an answer become values. All are independent of locale and of state.
namespace store {

/// Makes an element name or a flag's text lower case: the ASCII letters, and U+212A KELVIN SIGN,
/// the one other character whose lower case is an ASCII letter in use here. Everything else stays.
void lowercase(std::string& text);

/// Whether the lowercased text is exactly "true". Nothing is trimmed.
[[nodiscard]] bool flagFromText(std::string_view text);

/// Reads leading white space, a sign and decimal digits up to the first other character as a signed
/// 64-bit integer (no digits give 0, beyond the range gives the nearest limit) and takes its 64
/// bits as unsigned: "-1" gives 18446744073709551615.
[[nodiscard]] std::uint64_t numberFromText(std::string_view text);

} // namespace store
