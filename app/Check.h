#pragma once

#include "app/Finding.h"

#include <vector>

namespace app {

/// What a start would find, without being one: nothing is asked of the store, shown, started, moved
/// or stored. Only the directory for the uninstaller's copy is made, where it is missing.
[[nodiscard]] std::vector<Finding> findings();

} // namespace app
