#pragma once

#include <span>
#include <string_view>

namespace app {

/// What a start is asked for by its arguments.
struct Options {
    /// What is to be done.
    enum class Task {
        run,         ///< the main job
        check,       ///< to tell what a start would find
        showVersion, ///< to tell the program's version
        showHelp,    ///< to tell how it is used
        refuse       ///< nothing: there is an option that there is not
    };
    Task task = Task::run;
    bool asJSON = false;      ///< of a check: print JSON
    bool sendsLookup = false; ///< of a check: ask the store service
    std::string_view unknown; ///< the option that there is not
};

/// Reads the arguments, without the program's name. Options of two dashes are the program's own, or
/// those that Qt knows; everything else is left to Qt, which passes over what it does not know.
[[nodiscard]] Options optionsOf(std::span<char* const> arguments);

} // namespace app
