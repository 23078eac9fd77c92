#pragma once

#include <string>

namespace app {

/// Loads the modules: libraries of the bundle that only some runs need, or that the dynamic linker
/// loads faster separately. On Linux, the fetch module contains libcurl, and the desktop module
/// uses GIO for the Trash and the desktop's settings. base/Fetch.h, platform/Desktop.h and
/// platform/Preferences.h declare their functions. A call of one loads its module. Call
/// loadModules(false) at the start, to report a missing module before the window appears, and
/// loadModules(true) before a file of the bundle may disappear. Call from any thread.
///
/// @param all true to load every module. False to load only the modules of each run, and to check
/// that the module of a removal can be found.
/// @return the reason why the application cannot run, or an empty text.
[[nodiscard]] std::string loadModules(bool all);

} // namespace app
