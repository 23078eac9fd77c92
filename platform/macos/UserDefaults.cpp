#include "platform/UserDefaults.h"

#include <QDateTime>
#include <QDir>
#include <QSettings>
#include <QVariant>

namespace platform {
namespace {

QSettings settingsIn(const std::filesystem::path& file) {
    return {QString::fromStdString(file.native()), QSettings::NativeFormat};
}

QString nameOf(std::string_view key) {
    return QString::fromUtf8(key.data(), static_cast<qsizetype>(key.size()));
}

} // namespace

// Use the property list's path, because Qt derives the native domain from
// "<organization domain reversed>.<application>".
UserDefaults::UserDefaults(const std::string& domain)
    : file_(QDir::homePath().toStdString() + "/Library/Preferences/" + domain + ".plist") {}

std::optional<std::string> UserDefaults::text(std::string_view key, std::size_t /*limit*/,
                                              std::error_code& error) const {
    error.clear(); // QSettings does not tell
    const QVariant value = settingsIn(file_).value(nameOf(key));
    if (!value.canConvert<QString>()) {
        return std::nullopt;
    }
    return value.toString().toStdString();
}

std::optional<base::Timestamp> UserDefaults::date(std::string_view key) const {
    const QVariant value = settingsIn(file_).value(nameOf(key));
    const QDateTime date =
        value.userType() == QMetaType::QDateTime ? value.toDateTime() : QDateTime();
    if (!date.isValid()) {
        return std::nullopt;
    }
    return base::Timestamp(std::chrono::milliseconds(date.toMSecsSinceEpoch()));
}

std::error_code UserDefaults::setDate(std::string_view key, base::Timestamp moment) const {
    QSettings settings = settingsIn(file_);
    const auto milliseconds = std::chrono::floor<std::chrono::milliseconds>(moment);
    settings.setValue(nameOf(key),
                      QDateTime::fromMSecsSinceEpoch(milliseconds.time_since_epoch().count()));
    settings.sync();
    // It tells no more than that.
    return settings.status() == QSettings::NoError ? std::error_code()
                                                   : std::make_error_code(std::errc::io_error);
}

std::error_code UserDefaults::checkStoring() const {
    return settingsIn(file_).isWritable() ? std::error_code()
                                          : std::make_error_code(std::errc::permission_denied);
}

FileLock UserDefaults::lock() const {
    return FileLock(std::filesystem::path(file_).replace_extension(".lock"));
}

} // namespace platform
