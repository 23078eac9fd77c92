#include "platform/Preferences.h"

#include <CoreFoundation/CoreFoundation.h>

namespace platform {

bool wantsReducedMotion() {
    return CFPreferencesGetAppBooleanValue(CFSTR("reduceMotion"),
                                           CFSTR("com.apple.universalaccess"), nullptr) != 0;
}

bool prefersDark() {
    return false;
}

void observeDarkPreference(void (* /*changed*/)()) {}

} // namespace platform
