// A URL is the text that it was made of, of the web, and nothing in it can be read differently.
#include "base/URL.h"
#include "tests/fuzz/Fuzz.h"

#include <algorithm>

#include <strings.h>

void fuzz(std::string_view input) {
    const auto url = base::URL::make(input);
    if (!url) {
        return;
    }
    const std::string& text = url->text();
    require(text == input);
    const bool isSecure = strncasecmp(text.c_str(), "https://", 8) == 0;
    require(isSecure || strncasecmp(text.c_str(), "http://", 7) == 0);
    const char host = text[isSecure ? 8 : 7];
    require(host != '/' && host != '?' && host != '#' && host != '\0');
    require(std::all_of(text.begin(), text.end(),
                        [](char character) { return character > ' ' && character < '\x7f'; }));
    require(text.find_first_of("\"<>\\^`{|}") == std::string::npos);
}
