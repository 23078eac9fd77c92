#include "platform/Desktop.h"

#include <QDesktopServices>
#include <QFile>
#include <QFileInfo>
#include <QUrl>

namespace platform::desktop {

namespace {

/// Returns an error without details, because Qt reports only success or failure.
std::error_code errorUnless(bool done) {
    return done ? std::error_code() : std::make_error_code(std::errc::io_error);
}

} // namespace

std::error_code moveToTrash(const std::filesystem::path& item) {
    return errorUnless(QFile::moveToTrash(QString::fromStdString(item.native())));
}

std::error_code checkTrash(const std::filesystem::path& item, std::filesystem::path& culprit) {
    culprit = item.parent_path(); // A move changes it.
    return errorUnless(QFileInfo(QString::fromStdString(culprit.native())).isWritable());
}

std::shared_ptr<void> holdLogout(const std::string& /*identifier*/, const std::string& /*reason*/) {
    return nullptr;
}

std::error_code openFile(const std::filesystem::path& file) {
    return errorUnless(
        QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file.native()))));
}

std::error_code openAddress(const std::string& address) {
    return errorUnless(QDesktopServices::openUrl(QUrl(QString::fromStdString(address))));
}

std::string opener() {
    return "the system";
}

} // namespace platform::desktop
