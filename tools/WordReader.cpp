#include "tools/WordReader.h"

#include "tools/CommandLine.h"
#include "tools/Suggestion.h"

#include <CLI/CLI.hpp>

namespace tools {
namespace {

/// Returns the apps with the possible options: the command, or all apps before the command is read.
std::vector<const CLI::App*> candidates(const CLI::App& program, const CLI::App& command) {
    std::vector<const CLI::App*> apps{&command};
    if (&command == &program) {
        const auto commands = program.get_subcommands([](const CLI::App*) { return true; });
        apps.insert(apps.end(), commands.begin(), commands.end());
    }
    return apps;
}

/// Returns the name of an option, such as "--format" of "--format=table" and "-v" of "-vy".
std::string nameOf(const std::string& word) {
    return word.starts_with("--") ? word.substr(0, word.find('=')) : word.substr(0, 2);
}

bool isOption(const std::string& word) {
    return word.size() > 1 && word.front() == '-';
}

} // namespace

WordReader::Kind WordReader::read(const std::string& word) {
    if (openOption_ != nullptr) {
        openOption_ = nullptr;
        return Kind::Value;
    }
    if (!isSeparated_ && word == "--") {
        isSeparated_ = true;
        return Kind::Separator;
    }
    if (!isSeparated_ && isOption(word)) {
        readOption(word);
        return Kind::Option;
    }
    if (command_ == program_) {
        return readCommand(word);
    }
    ++argumentCount_;
    return Kind::Argument;
}

void WordReader::readOption(const std::string& word) {
    const std::string name = nameOf(word);
    std::vector<std::string> known;
    for (const auto* app : candidates(*program_, *command_)) {
        if (const auto* option = app->get_option_no_throw(name)) {
            const bool takesValue = option->get_expected_min() > 0;
            if (!takesValue && word.ends_with('=')) { // CLI11 takes it for true
                throw UsageError(name + " has no value after =");
            }
            openOption_ = takesValue && word == name ? option : nullptr;
            return;
        }
        for (const auto* option : app->get_options()) {
            for (const auto& each : option->get_lnames()) {
                known.push_back("--" + each);
            }
        }
    }
    throw UsageError("unknown option " + name + suggestion(name, known));
}

WordReader::Kind WordReader::readCommand(const std::string& word) {
    const auto named =
        program_->get_subcommands([&](const CLI::App* app) { return app->check_name(word); });
    if (!named.empty()) {
        command_ = named.front();
        return Kind::Command;
    }
    std::vector<std::string> known;
    for (const auto* command : visibleCommands(*program_)) {
        known.push_back(command->get_name());
    }
    throw UsageError("unknown command " + word + suggestion(word, known));
}

DividedWords divided(const CLI::App& program, const std::string& name,
                     std::span<const char* const> words) {
    WordReader reader(program);
    DividedWords result;
    for (const std::string word : words) {
        const auto kind = reader.read(word);
        const bool takesReferences = reader.command().get_option_no_throw(name) != nullptr;
        if (kind == WordReader::Kind::Argument && takesReferences) {
            result.references.push_back(word);
        } else if (kind == WordReader::Kind::Command) {
            result.others.insert(result.others.begin(), word);
        } else if (kind == WordReader::Kind::Option && word.find('=') == word.size() - 1) {
            // CLI11 would take the next word as the value.
            result.others.insert(result.others.end(), {word.substr(0, word.size() - 1), ""});
        } else if (kind != WordReader::Kind::Separator || !takesReferences) {
            result.others.push_back(word);
        }
    }
    return result;
}

std::vector<const CLI::App*> visibleCommands(const CLI::App& program) {
    return program.get_subcommands([](const CLI::App* app) { return !app->get_group().empty(); });
}

} // namespace tools
