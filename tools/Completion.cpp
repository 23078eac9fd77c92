#include "tools/Completion.h"

#include "tools/CommandLine.h"
#include "tools/WordReader.h"

#include <vector>

#include <CLI/CLI.hpp>

namespace tools {
namespace {

// The bash script joins the words around "=", because bash splits them there.
constexpr const char* kBash = R"script(# bash completion for storectl
_storectl() {
    local IFS=$'\n' current=${COMP_WORDS[COMP_CWORD]#=} candidates
    candidates=$("${COMP_WORDS[0]}" complete -- "${COMP_WORDS[@]:1:COMP_CWORD-1}" "$current" 2>/dev/null | cut -f 1)
    COMPREPLY=($(compgen -W "$candidates" -- "$current"))
}
complete -o default -F _storectl storectl
)script";

constexpr const char* kZsh = R"script(#compdef storectl
_storectl() {
    local -a candidates
    candidates=("${(@f)$("${(Q)words[1]}" complete -- "${(@Q)words[2,CURRENT]}" 2>/dev/null)}")
    if [[ -n $candidates ]]; then
        candidates=("${(@)candidates/$'\t'/:}")
        _describe storectl candidates
    else
        _files
    fi
}
if [ "$funcstack[1]" = _storectl ]; then _storectl "$@"; else compdef _storectl storectl; fi
)script";

constexpr const char* kFish = R"script(# fish completion for storectl
function __storectl_candidates
    set -l words (commandline -opc) (commandline -ct)
    set -l candidates ($words[1] complete -- $words[2..-1] 2>/dev/null)
    if set -q candidates[1]
        printf '%s\n' $candidates
    else
        __fish_complete_path (commandline -ct)
    end
end
complete -c storectl -f -a '(__storectl_candidates)'
)script";

std::string line(const std::string& word, const std::string& description) {
    return word + "\t" + description + "\n";
}

/// Returns the choices of an option or an argument that has some, such as "json|table".
/// @param prefix stands before each of them.
std::string choicesOf(const CLI::Option& option, const std::string& prefix = "") {
    std::string lines;
    if (option.get_type_name().find('|') != std::string::npos) {
        for (const auto& choice : CLI::detail::split(option.get_type_name(), '|')) {
            lines += line(prefix + choice, option.get_description());
        }
    }
    return lines;
}

std::string optionsOf(const CLI::App& app) {
    std::string lines;
    for (const auto* option : app.get_options()) {
        for (const auto& name : option->get_snames()) {
            lines += line("-" + name, option->get_description());
        }
        for (const auto& name : option->get_lnames()) {
            lines += line("--" + name, option->get_description());
        }
    }
    return lines;
}

std::string commandsOf(const CLI::App& program) {
    std::string lines;
    for (const auto* command : visibleCommands(program)) {
        lines += line(command->get_name(), command->get_description());
    }
    return lines;
}

/// Returns the candidates for the next argument of a command.
std::string argumentsOf(const WordReader& reader) {
    const auto arguments = reader.command().get_options(
        [](const CLI::Option* option) { return option->get_positional(); });
    return reader.argumentCount() < arguments.size() ? choicesOf(*arguments[reader.argumentCount()])
                                                     : "";
}

} // namespace

std::string completions(const CLI::App& program, std::span<const std::string> words) {
    if (words.empty()) {
        return "";
    }
    WordReader reader(program);
    for (const auto& word : words.first(words.size() - 1)) {
        if (word != "=" || reader.openOption() == nullptr) {
            reader.read(word);
        }
    }
    if (reader.openOption() != nullptr) {
        return choicesOf(*reader.openOption());
    }
    const std::string& last = words.back();
    if (last.starts_with('-') && !reader.isSeparated()) {
        const std::string name = last.substr(0, last.find('='));
        const auto* option = name == last ? nullptr : reader.command().get_option_no_throw(name);
        return option != nullptr ? choicesOf(*option, name + "=") : optionsOf(reader.command());
    }
    return &reader.command() == &program ? commandsOf(program) : argumentsOf(reader);
}

std::string completionScript(const std::string& shell) {
    return shell == "fish" ? kFish : shell == "zsh" ? kZsh : kBash;
}

} // namespace tools
