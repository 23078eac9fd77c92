#pragma once

#include "base/Fetch.h"
#include "platform/Desktop.h"
#include "platform/Preferences.h"

namespace app {

/// The functions of the fetch module.
struct FetchModule {
    decltype(&base::fetch) fetch;
};

/// The functions of the desktop module.
struct DesktopModule {
    decltype(&platform::desktop::moveToTrash) moveToTrash;
    decltype(&platform::desktop::checkTrash) checkTrash;
    decltype(&platform::desktop::holdLogout) holdLogout;
    decltype(&platform::wantsReducedMotion) wantsReducedMotion;
    decltype(&platform::prefersDark) prefersDark;
    decltype(&platform::observeDarkPreference) observeDarkPreference;
};

/// The symbol name of each module's exported table.
inline constexpr const char* kModuleTable = "subscriptionHelperModule";

} // namespace app
