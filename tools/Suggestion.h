#pragma once

#include <string>
#include <vector>

namespace tools {

/// Returns "; did you mean …?" with the known word that is most similar to `word`, or an empty text
/// if none is similar.
[[nodiscard]] std::string suggestion(const std::string& word,
                                     const std::vector<std::string>& known);

} // namespace tools
