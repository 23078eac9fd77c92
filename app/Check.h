#pragma once

#include "app/CheckResult.h"

#include <string>
#include <vector>

namespace app {

/// Checks everything that a start and a removal need except the display, with the functions that
/// they use. Creates the lock file and the directory for the uninstaller's copy if they are
/// missing, and changes or shows nothing else. Blocks during the lookup. Call it once, after
/// loadModules().
/// @param missing the result of loadModules(): why the application cannot run, or empty.
/// @param sendsLookup true to look the subscription up at the store service.
/// @return one result per check. The detail of a failed check ends with the next step.
[[nodiscard]] std::vector<CheckResult> runChecks(const std::string& missing, bool sendsLookup);

/// Returns the result of connecting to the display.
/// @param reasons why Qt could not connect, or empty if it is connected.
[[nodiscard]] CheckResult displayResult(const std::string& reasons);

} // namespace app
