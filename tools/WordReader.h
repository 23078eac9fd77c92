#pragma once

#include <cstddef>
#include <span>
#include <string>
#include <vector>

namespace CLI {
class App;
class Option;
} // namespace CLI

namespace tools {

/// Classifies the words of a command line by a program's declared commands and options.
class WordReader {
  public:
    enum class Kind { Command, Option, Value, Separator, Argument };

    /// @param program outlives the reader.
    explicit WordReader(const CLI::App& program) : program_(&program), command_(&program) {}

    /// Returns the kind of the next word. Before the command, options of all commands count.
    /// @throws UsageError if the word is an unknown option or command.
    Kind read(const std::string& word);

    /// Returns the command, or the program before the command is read.
    [[nodiscard]] const CLI::App& command() const { return *command_; }
    /// Returns the option that takes the next word as its value, or null.
    [[nodiscard]] const CLI::Option* openOption() const { return openOption_; }
    /// Returns the number of arguments that were read.
    [[nodiscard]] std::size_t argumentCount() const { return argumentCount_; }
    /// Returns true after "--", which makes all later words arguments.
    [[nodiscard]] bool isSeparated() const { return isSeparated_; }

  private:
    void readOption(const std::string& word);
    Kind readCommand(const std::string& word);

    const CLI::App* program_;
    const CLI::App* command_;
    const CLI::Option* openOption_ = nullptr;
    std::size_t argumentCount_ = 0;
    bool isSeparated_ = false;
};

/// The words of a command line, divided.
struct DividedWords {
    std::vector<std::string> references; ///< Exactly as given.
    std::vector<std::string> others;     ///< The command, then its options and other arguments.
};

/// Takes the references out of a command line, because CLI11 splits "[A,B]" and drops "++".
/// @param name the name that the commands give their argument for references.
/// @throws UsageError if a word is an unknown option or command.
[[nodiscard]] DividedWords divided(const CLI::App& program, const std::string& name,
                                   std::span<const char* const> words);

/// Returns the names of all commands that users may call.
[[nodiscard]] std::vector<const CLI::App*> visibleCommands(const CLI::App& program);

} // namespace tools
