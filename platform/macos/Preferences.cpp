#include "platform/Preferences.h"

#include <CoreFoundation/CoreFoundation.h>

namespace platform {

bool wantsReducedMotion() {
    Boolean isValid = 0;
    return CFPreferencesGetAppBooleanValue(CFSTR("reduceMotion"),
                                           CFSTR("com.apple.universalaccess"), &isValid) != 0;
}

bool prefersDark() {
    return false;
}

void observeDarkPreference(void (* /*changed*/)()) {}

} // namespace platform
