#include "platform/Preferences.h"

#include <QDir>
#include <QSettings>

namespace platform {

bool wantsReducedMotion() {
    const QString file =
        QDir::homePath() + QStringLiteral("/Library/Preferences/com.apple.universalaccess.plist");
    return QSettings(file, QSettings::NativeFormat).value(QStringLiteral("reduceMotion")).toBool();
}

bool prefersDark() {
    return false;
}

void observeDarkPreference(void (* /*changed*/)()) {}

} // namespace platform
