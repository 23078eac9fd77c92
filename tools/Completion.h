#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}

namespace tools {

/// The names of a command's options, such as "-v" and "--verbose".
[[nodiscard]] std::vector<std::string> optionsOf(const CLI::App& app);

/// A script that has a shell complete the commands and options that `app` declares.
/// @param shell "bash", "zsh" or "fish".
[[nodiscard]] std::string completionFor(const std::string& shell, const CLI::App& app);

} // namespace tools
