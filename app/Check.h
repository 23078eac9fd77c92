#pragma once

#include "app/CheckResult.h"

#include <string>
#include <vector>

namespace app {

/// Checks everything that a start and a removal need but the display, by the functions that they
/// use. Shows, starts, moves and stores nothing. Makes the lock file and the directory for the
/// uninstaller's copy if they are missing. Blocks while it sends the lookup. Call it once, after
/// loadModules().
/// @param missing why the application cannot run, or empty; see loadModules().
/// @param sendsLookup whether the store service is asked for the subscription.
/// @return one result per check. The detail of a failed one ends with the next step.
[[nodiscard]] std::vector<CheckResult> runChecks(const std::string& missing, bool sendsLookup);

/// Returns the result of connecting to the display.
/// @param reasons why Qt could not connect, or empty if it is connected.
[[nodiscard]] CheckResult displayResult(const std::string& reasons);

} // namespace app
