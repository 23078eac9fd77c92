#include "platform/UserLanguages.h"

#include <QLocale>

namespace platform {

std::vector<std::string> userLanguages() {
    std::vector<std::string> languages;
    for (QString name : QLocale::system().uiLanguages()) {
        name.replace(QLatin1Char('-'), QLatin1Char('_'));
        while (!name.isEmpty()) {
            languages.push_back(name.toStdString());
            name.truncate(qMax(name.lastIndexOf(QLatin1Char('_')), 0));
        }
    }
    return languages;
}

} // namespace platform
