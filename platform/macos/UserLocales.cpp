#include "platform/UserLanguages.h"

#include <QLocale>

namespace platform {

std::vector<std::string> userLocales() {
    std::vector<std::string> locales;
    for (const QString& name : QLocale::system().uiLanguages()) {
        locales.push_back(name.toStdString());
    }
    return locales;
}

} // namespace platform
