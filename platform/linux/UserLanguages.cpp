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

/// The locale for messages by the order that POSIX gives to its variables.
std::string_view messagesLocale() {
    for (const char* name : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        if (const auto value = environment(name); !value.empty()) {
            return value;
        }
    }
    return "C";
}

void appendWithParents(std::vector<std::string>& languages, std::string_view locale) {
    locale = locale.substr(0, locale.find_first_of(".@"));
    if (locale == "zh_CN" || locale == "zh_SG" || locale == "zh") {
        languages.emplace_back("zh_Hans"); // a locale does not name the script
    }
    // The name becomes that of a directory: one with a slash would lead out of the bundle.
    const bool isPortuguese = locale.substr(0, 2) == "pt" && locale != "pt_BR";
    while (!locale.empty() && locale.find('/') == std::string_view::npos) {
        languages.emplace_back(locale);
        const auto parent = locale.rfind('_');
        locale = locale.substr(0, parent == std::string_view::npos ? 0 : parent);
    }
    if (isPortuguese) {
        languages.emplace_back("pt_BR"); // better than another language
    }
}

} // namespace

std::vector<std::string> userLanguages() {
    const std::string_view locale = messagesLocale();
    const std::string_view plain = locale.substr(0, locale.find('.'));
    if (plain == "C" || plain == "POSIX") {
        return {};
    }
    std::vector<std::string> languages;
    std::string_view list = environment("LANGUAGE");
    while (!list.empty()) {
        const auto end = std::min(list.find(':'), list.size());
        appendWithParents(languages, list.substr(0, end));
        list.remove_prefix(std::min(end + 1, list.size()));
    }
    appendWithParents(languages, locale);
    return languages;
}

} // namespace platform
