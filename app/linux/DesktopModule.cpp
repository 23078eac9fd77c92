#include "app/linux/ModuleTables.h"

extern "C" __attribute__((visibility("default"))) const app::DesktopModule subscriptionHelperModule{
    platform::desktop::moveToTrash, platform::desktop::checkTrash, platform::desktop::holdLogout,
    platform::wantsReducedMotion,   platform::prefersDark,         platform::observeDarkPreference};
