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

/// What a start would find, without being one: nothing is asked of the store, shown, started, moved
/// or stored. Only the directory for the uninstaller's copy is made, where it is missing.
[[nodiscard]] std::vector<Finding> findings();

} // namespace app
