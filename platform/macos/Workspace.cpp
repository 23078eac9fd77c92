#include "platform/Workspace.h"

#include "platform/Log.h"
#include "platform/URL.h"

#include <string>

#include <QDesktopServices>
#include <QFile>
#include <QUrl>

namespace platform::workspace {

bool recycle(const std::filesystem::path& directory, const std::filesystem::path& name) {
    if (name.empty() || name == "." || name == ".." || name.has_parent_path()) {
        return false;
    }
    return QFile::moveToTrash(QString::fromStdString((directory / name).native()));
}

bool openFile(const std::filesystem::path& file) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(QString::fromStdString(file.native())));
}

bool openURL(std::string_view address) {
    const auto url = webAddress(address);
    if (!url) {
        return false;
    }
    if (!QDesktopServices::openUrl(QUrl(QString::fromStdString(url->text())))) {
        log("No browser could be started for %@", {url->text()});
        return false;
    }
    return true;
}

} // namespace platform::workspace
