#pragma once

#include "base/Fetch.h"
#include "platform/Desktop.h"
#include "platform/Motion.h"

namespace app {

/// What the fetch module exports.
struct FetchModule {
    decltype(&base::fetch) fetch;
};

/// What the desktop module exports.
struct DesktopModule {
    decltype(&platform::desktop::moveToTrash) moveToTrash;
    decltype(&platform::desktop::checkTrash) checkTrash;
    decltype(&platform::wantsReducedMotion) wantsReducedMotion;
};

/// The name under which each exports its table.
inline constexpr const char* kModuleTable = "subscriptionHelperModule";

} // namespace app
