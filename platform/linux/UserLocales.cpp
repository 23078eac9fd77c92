#include "platform/UserLanguages.h"

#include <algorithm>
#include <cstdlib>
#include <string_view>

namespace platform {
namespace {

std::string_view environment(const char* name) {
    const char* value = std::getenv(name);
    return value != nullptr ? value : "";
}

/// Returns the locale for messages from the variables in POSIX's order.
std::string_view messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const auto value = environment(name); !value.empty()) {
            return value;
        }
    }
    return "C";
}

} // namespace

std::vector<std::string> userLocales() {
    const std::string_view locale = messagesLocale();
    const std::string_view plain = locale.substr(0, locale.find('.'));
    if (plain == "C" || plain == "POSIX") {
        return {};
    }
    std::vector<std::string> locales;
    std::string_view list = environment("LANGUAGE");
    while (!list.empty()) {
        const auto end = std::min(list.find(':'), list.size());
        locales.emplace_back(list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    locales.emplace_back(locale);
    return locales;
}

} // namespace platform
