#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace tools {

/// Returns the content of a file, or of standard input if `file` is "-".
/// @throws UsageError if it cannot be read to its end.
[[nodiscard]] std::string contentOf(const std::string& file);

struct References {
    std::vector<std::string> items;
    std::size_t duplicates = 0; ///< The number of references that were left out.
};

/// Returns the references of a command line. "-" stands for the lines of standard input, without
/// blank lines and without one carriage return at the end of each.
/// @throws UsageError if standard input cannot be read to its end.
/// @param skipsDuplicates leaves out repeated references and counts them.
[[nodiscard]] References referencesOf(const std::vector<std::string>& arguments,
                                      bool skipsDuplicates);

/// Asks on the controlling terminal for confirmation to cancel these references.
/// @throws UsageError if the user declines, or if the process lacks a terminal.
void confirmCancellation(const std::vector<std::string>& references);

} // namespace tools
