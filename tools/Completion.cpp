#include "tools/Completion.h"

#include "base/Format.h"

#include <CLI/CLI.hpp>

namespace tools {
namespace {

/// What can follow a command: its options, its commands, and the words of its arguments.
std::string wordsOf(const CLI::App& app) {
    std::vector<std::string> words = optionsOf(app);
    for (const auto* command : app.get_subcommands({})) {
        words.push_back(command->get_name());
    }
    return CLI::detail::join(words, " ");
}

// bash and zsh have the same way to complete from a list of words, once zsh is told to.
constexpr const char* kShell = R"(_storectl() {
    local current=${COMP_WORDS[COMP_CWORD]} command= words word
    for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
        case $word in %@) command=${command:-$word} ;; esac
    done
    case $command in
%@        *) words="%@" ;;
    esac
    case ${COMP_WORDS[COMP_CWORD - 1]} in
        --format) words="json table" ;;
        parse) words="subscription order" ;;
        completion) words="bash zsh fish" ;;
    esac
    local IFS=$'\n'
    COMPREPLY=($(compgen -W "${words// /$'\n'}" -- "$current"))
    if [[ $command == parse && ${#COMPREPLY[@]} -eq 0 ]]; then
        COMPREPLY=($(compgen -f -- "$current"))
    fi
}
complete -F _storectl storectl
)";

std::string forBash(const CLI::App& app) {
    std::vector<std::string> names;
    std::string cases;
    for (const auto* command : app.get_subcommands({})) {
        names.push_back(command->get_name());
        cases += "        " + names.back() + ") words=\"" + wordsOf(*command) + "\" ;;\n";
    }
    return base::formatted(kShell, {CLI::detail::join(names, " | "), cases, wordsOf(app)});
}

/// The lines for the options of one command; `condition` says when they count.
std::string fishOptions(const CLI::App& app, const std::string& condition) {
    std::string lines;
    for (const auto* option : app.get_options()) {
        std::string names;
        for (const auto& name : option->get_lnames()) {
            names += " -l " + name;
        }
        for (const auto& name : option->get_snames()) {
            names += " -s " + name;
        }
        if (!names.empty()) {
            lines += base::formatted("complete -c storectl -n '%@'%@ -d \"%@\"%@\n",
                                     {condition, names, option->get_description(),
                                      option->check_lname("format") ? " -xa 'json table'" : ""});
        }
    }
    return lines;
}

std::string forFish(const CLI::App& app) {
    std::string lines = fishOptions(app, "__fish_use_subcommand");
    for (const auto* command : app.get_subcommands({})) {
        lines += base::formatted("complete -c storectl -n '__fish_use_subcommand' -xa %@ -d '%@'\n",
                                 {command->get_name(), command->get_description()});
        lines += fishOptions(*command, "__fish_seen_subcommand_from " + command->get_name());
    }
    return lines;
}

} // namespace

std::vector<std::string> optionsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const auto* option : app.get_options()) {
        for (const auto& name : option->get_snames()) {
            names.push_back("-" + name);
        }
        for (const auto& name : option->get_lnames()) {
            names.push_back("--" + name);
        }
    }
    return names;
}

std::string completionFor(const std::string& shell, const CLI::App& app) {
    if (shell == "fish") {
        return forFish(app);
    }
    return (shell == "zsh" ? "#compdef storectl\nautoload -U +X bashcompinit && bashcompinit\n"
                           : "# bash completion for storectl\n") +
           forBash(app);
}

} // namespace tools
