#pragma once

#include <span>
#include <string_view>
#include <type_traits>

namespace app {

/// The options of a start.
struct Options {
    /// The task of the process.
    enum class Task {
        Run,         ///< Run the application, unless the start is throttled.
        Check,       ///< Check the installation.
        ShowVersion, ///< Print the version.
        ShowHelp,    ///< Print the usage.
        Refuse       ///< Report an unknown option.
    };
    Task task = Task::Run;
    bool asJSON = false;      ///< Of a check: print JSON.
    bool sendsLookup = false; ///< Of a check: look the subscription up at the store service.
    std::string_view unknown; ///< The unknown option.
};
// The process entry and the application library contain different C++ runtimes.
static_assert(std::is_trivially_copyable_v<Options>);

/// Reads the arguments, without the program's name. Options of two dashes must be the program's own
/// or Qt's. All other arguments are left to Qt, which ignores unknown ones.
[[nodiscard]] Options optionsOf(std::span<char* const> arguments);

} // namespace app
