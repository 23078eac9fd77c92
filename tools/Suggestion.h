#pragma once

#include <string>
#include <vector>

namespace tools {

/// Returns a question such as ". Did you mean cancel?" with the most similar known word, or an
/// empty text if all differ too much from `word`.
[[nodiscard]] std::string suggestion(const std::string& word,
                                     const std::vector<std::string>& known);

} // namespace tools
