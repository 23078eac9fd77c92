#include "base/URL.h"

#include "base/Handle.h"

#include <charconv>
#include <cstdint>

#include <strings.h>
#include <uriparser/Uri.h>

namespace base {
namespace {

std::string_view textOf(const UriTextRangeA& range) {
    return {range.first, static_cast<std::size_t>(range.afterLast - range.first)};
}

bool isWebScheme(const std::string& scheme) {
    return strcasecmp(scheme.c_str(), "http") == 0 || strcasecmp(scheme.c_str(), "https") == 0;
}

/// Returns true for a port up to 65535, because RFC 3986 allows any number. An empty text is valid
/// and means the scheme's default port.
bool isPort(std::string_view digits) {
    std::uint16_t port = 0;
    const auto result = std::from_chars(digits.data(), digits.data() + digits.size(), port);
    return digits.empty() || result.ec == std::errc();
}

} // namespace

std::optional<URL> URL::make(std::string_view text) {
    UriUriA uri{};
    if (uriParseSingleUriExA(&uri, text.data(), text.data() + text.size(), nullptr) !=
        URI_SUCCESS) {
        return std::nullopt;
    }
    const Handle<UriUriA, uriFreeUriMembersA> members(&uri);
    if (!isWebScheme(std::string(textOf(uri.scheme))) || textOf(uri.hostText).empty() ||
        !isPort(textOf(uri.portText))) {
        return std::nullopt;
    }
    return URL(std::string(text), uri.userInfo.first != nullptr);
}

} // namespace base
