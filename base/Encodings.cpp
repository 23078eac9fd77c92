#include "base/Encodings.h"

#include "base/Iconv.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include <strings.h>

namespace base {
namespace {

constexpr const char* kEncodings[] = {
    "ISO-8859-2",   "ISO-8859-3",   "ISO-8859-4",   "ISO-8859-5",   "ISO-8859-6",
    "ISO-8859-7",   "ISO-8859-8",   "ISO-8859-9",   "ISO-8859-10",  "ISO-8859-11",
    "ISO-8859-13",  "ISO-8859-14",  "ISO-8859-15",  "ISO-8859-16",  "windows-1250",
    "windows-1251", "windows-1252", "windows-1253", "windows-1254", "windows-1255",
    "windows-1256", "windows-1257", "windows-1258", "KOI8-R",       "KOI8-U",
};

/// Returns the code point of a UTF-32LE text of one character, or -1 for another text.
int codePointOf(const std::optional<std::string>& text) {
    if (!text || text->size() != 4) {
        return -1;
    }
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>((*text)[at]); };
    return byte(0) | byte(1) << 8 | byte(2) << 16;
}

} // namespace

std::optional<CodePoints> codePointsOf(const char* encoding) {
    const auto* const known =
        std::find_if(std::begin(kEncodings), std::end(kEncodings),
                     [=](const char* entry) { return strcasecmp(entry, encoding) == 0; });
    if (known == std::end(kEncodings)) {
        return std::nullopt;
    }
    const Iconv conversion("UTF-32LE", *known);
    if (!conversion.isValid()) {
        return std::nullopt;
    }
    CodePoints points{};
    for (std::size_t byte = 0; byte < points.size(); ++byte) {
        const char character = static_cast<char>(byte);
        points[byte] = codePointOf(conversion.convert({&character, 1}));
    }
    return points;
}

} // namespace base
