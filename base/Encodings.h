#pragma once

#include <array>
#include <optional>

namespace base {

/// The code points of the 256 bytes of a single-byte encoding, or -1 for a byte without one.
using CodePoints = std::array<int, 256>;

/// Returns the code points of an encoding that a document may declare besides expat's own four, in
/// any letter case, or std::nullopt for any other encoding. The list is fixed, because the network
/// names the encoding and some of iconv's encodings are not single-byte ones.
[[nodiscard]] std::optional<CodePoints> codePointsOf(const char* encoding);

} // namespace base
