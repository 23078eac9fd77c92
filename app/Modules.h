#pragma once

#include <string>

namespace app {

/// What of the application lies in libraries of its own beside it in the bundle, since not every
/// run needs it, or since the loader is faster so: on Linux the fetch with libcurl, and the Trash
/// and the desktop's settings with GIO. Nothing else calls for them: base/Fetch.h,
/// platform/Desktop.h and platform/Motion.h declare the functions as ever.
///
/// Loads what each run needs, and looks whether what a removal needs will be found, or loads `all`.
/// To be called once, before any of these functions.
/// @return why the application cannot run; empty when it can.
[[nodiscard]] std::string loadModules(bool all);

} // namespace app
