#include "platform/UserDefaults.h"

#include <utility>

#include <QDateTime>
#include <QDir>
#include <QSettings>
#include <QStandardPaths>
#include <QVariant>

namespace platform {
namespace {

// Qt derives the native domain from "<organisation domain reversed>.<application>"; a domain with a
// path of its own is addressed by the property list's file.
QString fileOf(const std::string& domain, const char* suffix) {
    return QStandardPaths::writableLocation(QStandardPaths::HomeLocation) +
           QStringLiteral("/Library/Preferences/") + QString::fromStdString(domain) +
           QLatin1String(suffix);
}

QVariant valueOf(const std::string& domain, std::string_view key) {
    const QSettings settings(fileOf(domain, ".plist"), QSettings::NativeFormat);
    return settings.value(QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())));
}

} // namespace

UserDefaults::UserDefaults(std::string domain) : domain_(std::move(domain)) {}

std::optional<std::string> UserDefaults::text(std::string_view key) const {
    const QVariant value = valueOf(domain_, key);
    if (!value.canConvert<QString>()) {
        return std::nullopt;
    }
    return value.toString().toStdString();
}

std::optional<base::Timestamp> UserDefaults::date(std::string_view key) const {
    const QVariant value = valueOf(domain_, key);
    const QDateTime date =
        value.userType() == QMetaType::QDateTime ? value.toDateTime() : QDateTime();
    if (!date.isValid()) {
        return std::nullopt;
    }
    return base::Timestamp(std::chrono::milliseconds(date.toMSecsSinceEpoch()));
}

bool UserDefaults::setDate(std::string_view key, base::Timestamp moment) const {
    QSettings settings(fileOf(domain_, ".plist"), QSettings::NativeFormat);
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(moment);
    settings.setValue(QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size())),
                      QDateTime::fromMSecsSinceEpoch(milliseconds.time_since_epoch().count()));
    settings.sync();
    return settings.status() == QSettings::NoError;
}

FileLock UserDefaults::lock() const {
    return FileLock(fileOf(domain_, ".lock").toStdString());
}

} // namespace platform
