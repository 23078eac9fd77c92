#include "platform/Desktop.h"

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace platform::desktop {

bool moveToTrash(const std::filesystem::path& item) {
    return QFile::moveToTrash(QString::fromStdString(item.native()));
}

bool openFile(const std::filesystem::path& file) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file.native())));
}

bool openAddress(const std::string& address) {
    return QDesktopServices::openUrl(QUrl(QString::fromStdString(address)));
}

} // namespace platform::desktop
