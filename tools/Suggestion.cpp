#include "tools/Suggestion.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>

namespace tools {
namespace {

/// Returns the number of letters to change, add or remove that turns one word into the other.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : one) {
        std::size_t diagonal = row[0]++;
        for (std::size_t at = 0; at < other.size(); ++at) {
            const std::size_t changed = diagonal + (letter == other[at] ? 0 : 1);
            diagonal = row[at + 1];
            row[at + 1] = std::min({changed, row[at] + 1, diagonal + 1});
        }
    }
    return row.back();
}

} // namespace

std::string suggestion(const std::string& word, const std::vector<std::string>& known) {
    const auto far = [&](const std::string& each) {
        return each.starts_with(word) ? 0 : distance(word, each);
    };
    const auto nearest =
        std::min_element(known.begin(), known.end(),
                         [&](const auto& one, const auto& other) { return far(one) < far(other); });
    const bool isNear =
        !word.empty() && nearest != known.end() && far(*nearest) <= 1 + word.size() / 4;
    return isNear ? ". Did you mean " + *nearest + "?" : "";
}

} // namespace tools
