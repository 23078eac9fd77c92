#include "app/Options.h"

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>

namespace app {
namespace {

using Task = Options::Task;

constexpr std::pair<std::string_view, Task> kTasks[] = {
    {"--check", Task::Check},
    {"--version", Task::ShowVersion},
    {"--help", Task::ShowHelp},
    {"-h", Task::ShowHelp},
};

/// Options of a check.
constexpr std::pair<std::string_view, bool Options::*> kCheckFlags[] = {
    {"--json", &Options::asJSON},
    {"--ask", &Options::sendsLookup},
};

/// Returns the row of a table for an argument, or null.
template <class Row, std::size_t size>
const Row* rowFor(const Row (&table)[size], std::string_view argument) {
    const auto* const row = std::find_if(std::begin(table), std::end(table),
                                         [=](auto& each) { return each.first == argument; });
    return row != std::end(table) ? row : nullptr;
}

/// Options that Qt accepts with one dash and with two.
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
    Options options;
    std::string_view checkFlag;
    std::string_view other;
    for (const std::string_view argument : arguments) {
        if (const auto* const task = rowFor(kTasks, argument)) {
            options.task = task->second;
        } else if (const auto* const flag = rowFor(kCheckFlags, argument)) {
            options.*flag->second = true;
            checkFlag = argument;
        } else if (argument.starts_with("--") && !isOfToolkit(argument)) {
            return {Task::Refuse, false, false, argument};
        } else {
            other = argument;
        }
    }
    const bool isCheck = options.task == Task::Check;
    const auto unknown = isCheck ? other : checkFlag; // --version has no JSON form
    return unknown.empty() ? options : Options{Task::Refuse, false, false, unknown};
}

} // namespace app
