#include "base/Format.h"

namespace base {

std::string formatted(std::string_view format, std::initializer_list<FormatArgument> arguments) {
    constexpr std::string_view kPlaceholder = "%@";
    std::string text;
    const auto* argument = arguments.begin();
    for (auto at = format.find(kPlaceholder); at != std::string_view::npos;
         at = format.find(kPlaceholder)) {
        text.append(format.substr(0, at));
        const FormatArgument value = argument != arguments.end() ? *argument++ : std::nullopt;
        text.append(value.value_or("(null)"));
        format.remove_prefix(at + kPlaceholder.size());
    }
    return text.append(format);
}

} // namespace base
