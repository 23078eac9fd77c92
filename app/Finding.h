#pragma once

#include <string>
#include <vector>

namespace app {

/// One thing that a start needs, and how it is here.
struct Finding {
    std::string what;
    bool isRight = false;
    std::string detail;
};

/// Prints findings to standard output, one line each, or as a JSON array of objects with the
/// members' names.
/// @return the process's exit status: 0, or 1 when one is not right or they cannot be written.
[[nodiscard]] int printFindings(const std::vector<Finding>& findings, bool asJSON);

} // namespace app
