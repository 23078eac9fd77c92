#include "base/URL.h"

#include <algorithm>
#include <memory>

#include <curl/curl.h>

namespace base {
namespace {

bool isHexDigit(char character) {
    return (character >= '0' && character <= '9') || (character >= 'a' && character <= 'f') ||
           (character >= 'A' && character <= 'F');
}

bool isAllowed(char character) {
    constexpr std::string_view kForbidden = "\"<>\\^`{|}";
    return character > ' ' && character < '\x7f' &&
           kForbidden.find(character) == std::string_view::npos;
}

bool hasOnlyWholeTriples(std::string_view text) {
    for (auto at = text.find('%'); at != std::string_view::npos; at = text.find('%', at + 1)) {
        if (at + 2 >= text.size() || !isHexDigit(text[at + 1]) || !isHexDigit(text[at + 2])) {
            return false;
        }
    }
    return true;
}

/// Whether a non-empty host follows the scheme, brackets stand in it only, and at most one '#'
/// stands at all.
bool hasDelimitersInPlace(std::string_view text) {
    constexpr std::string_view kDelimiter = "://";
    const auto scheme = text.find(':');
    if (scheme == std::string_view::npos || !text.substr(scheme).starts_with(kDelimiter)) {
        return false;
    }
    text.remove_prefix(scheme + kDelimiter.size());
    const auto host = text.substr(0, text.find_first_of("/?#"));
    return !host.empty() &&
           text.substr(host.size()).find_first_of("[]") == std::string_view::npos &&
           std::count(text.begin(), text.end(), '#') <= 1;
}

/// Whether the text is a URL of the web by its structure. The parser guesses nothing here: a text
/// without a scheme, a host or a valid port is refused.
bool isWebURL(const std::string& text) {
    const std::unique_ptr<CURLU, decltype(&curl_url_cleanup)> handle(curl_url(), curl_url_cleanup);
    char* scheme = nullptr;
    if (!handle || curl_url_set(handle.get(), CURLUPART_URL, text.c_str(), 0) != CURLUE_OK ||
        curl_url_get(handle.get(), CURLUPART_SCHEME, &scheme, 0) != CURLUE_OK) {
        return false;
    }
    const std::unique_ptr<char, decltype(&curl_free)> owned(scheme, curl_free);
    return std::string_view(scheme) == "http" || std::string_view(scheme) == "https";
}

} // namespace

std::optional<URL> URL::make(std::string_view text) {
    std::string copy(text);
    if (!std::all_of(text.begin(), text.end(), isAllowed) || !hasOnlyWholeTriples(text) ||
        !hasDelimitersInPlace(text) || !isWebURL(copy)) {
        return std::nullopt;
    }
    return URL(std::move(copy));
}

} // namespace base
