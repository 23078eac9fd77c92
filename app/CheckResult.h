#pragma once

#include <optional>
#include <string>
#include <vector>

namespace app {

/// The result of one check of an installation.
struct CheckResult {
    std::string name;           ///< The checked thing.
    std::optional<bool> passed; ///< Absent if it was not tested.
    std::string detail;         ///< Its state, or the reason of a failure and the next step.
};

/// Prints results to standard output, one line each, or as a JSON array of objects with the
/// members' names. JSON shows an absent `passed` as null.
/// @return the process's exit status: 0, or 1 if a check failed or the results cannot be written.
[[nodiscard]] int printCheckResults(const std::vector<CheckResult>& results, bool asJSON);

} // namespace app
