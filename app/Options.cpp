#include "app/Options.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace app {
namespace {

using Task = Options::Task;

constexpr std::pair<std::string_view, Task> kTasks[] = {
    {"--check", Task::check},
    {"--version", Task::showVersion},
    {"--help", Task::showHelp},
    {"-h", Task::showHelp},
};

/// Options of two dashes that Qt takes as well as with one.
constexpr std::string_view kToolkitOptions[] = {
    "display",
    "fontengine",
    "geometry",
    "icon",
    "name",
    "platform",
    "plugin",
    "platformtheme",
    "platformpluginpath",
    "qwindowgeometry",
    "qwindowtitle",
    "reverse",
    "session",
    "style",
    "stylesheet",
    "sync",
    "testability",
    "title",
    "qwindowicon",
    "widgetcount",
};

bool isOfToolkit(std::string_view option) {
    const auto name = option.substr(2, option.find('=') - 2);
    return std::find(std::begin(kToolkitOptions), std::end(kToolkitOptions), name) !=
           std::end(kToolkitOptions);
}

} // namespace

Options optionsOf(std::span<char* const> arguments) {
    constexpr std::string_view kJSON = "--json";
    Options options;
    std::string_view other;
    for (const std::string_view argument : arguments) {
        const auto* const entry = std::find_if(std::begin(kTasks), std::end(kTasks),
                                               [=](auto& each) { return each.first == argument; });
        if (entry != std::end(kTasks)) {
            options.task = entry->second;
        } else if (argument == kJSON) {
            options.asJSON = true;
        } else if (argument.starts_with("--") && !isOfToolkit(argument)) {
            return {Task::refuse, false, argument};
        } else {
            other = argument;
        }
    }
    if (options.asJSON && options.task != Task::check) {
        return {Task::refuse, false, kJSON};
    }
    if (options.task == Task::check && !other.empty()) { // who wants JSON must not get lines
        return {Task::refuse, false, other};
    }
    return options;
}

} // namespace app
