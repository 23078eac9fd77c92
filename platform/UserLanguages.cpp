#include "platform/UserLanguages.h"

#include <algorithm>
#include <string_view>

namespace platform {
namespace {

void appendWithParents(std::vector<std::string>& languages, std::string_view locale) {
    if (locale == "zh_CN" || locale == "zh_SG" || locale == "zh") {
        languages.emplace_back("zh_Hans"); // a locale does not name the script
    }
    // Skip names with a slash, because the name becomes a directory inside the bundle.
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
    std::vector<std::string> languages;
    for (std::string locale : userLocales()) {
        std::replace(locale.begin(), locale.end(), '-', '_');
        appendWithParents(languages, locale.substr(0, locale.find_first_of(".@")));
    }
    return languages;
}

} // namespace platform
