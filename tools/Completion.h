#pragma once

#include <span>
#include <string>

namespace CLI {
class App;
}

namespace tools {

inline constexpr const char* kShells[] = {"bash", "zsh", "fish"};

/// Returns the candidates for the last word of a command line, one per line: a command, option or
/// choice that `program` declares, a tab, and its description. Returns an empty text if a file is
/// expected. The shell compares the candidates with the word.
/// @param words the command line without the name of the program. The last word may be empty.
[[nodiscard]] std::string completions(const CLI::App& program, std::span<const std::string> words);

/// Returns the script by which a shell completes the command. The script gets the candidates from
/// the command itself.
/// @param shell one of kShells.
[[nodiscard]] std::string completionScript(const std::string& shell);

} // namespace tools
