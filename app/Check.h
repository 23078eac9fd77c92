#pragma once

#include "app/Finding.h"

#include <string>
#include <vector>

namespace app {

/// What a start would find, without being one: nothing is asked of the store, shown, started, moved
/// or stored. Only the directory for the uninstaller's copy is made, where it is missing.
/// @param missing why the application cannot run, empty when it can; see loadModules().
[[nodiscard]] std::vector<Finding> findings(const std::string& missing);

} // namespace app
