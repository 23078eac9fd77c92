#include "platform/Desktop.h"

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace platform::desktop {

namespace {

/// Qt tells no more than whether it was done.
std::error_code errorUnless(bool done) {
    return done ? std::error_code() : std::make_error_code(std::errc::io_error);
}

} // namespace

std::error_code moveToTrash(const std::filesystem::path& item) {
    return errorUnless(QFile::moveToTrash(QString::fromStdString(item.native())));
}

std::error_code openFile(const std::filesystem::path& file) {
    return errorUnless(
        QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file.native()))));
}

std::error_code openAddress(const std::string& address) {
    return errorUnless(QDesktopServices::openUrl(QUrl(QString::fromStdString(address))));
}

} // namespace platform::desktop
