#include "platform/TemporaryDirectory.h"

#include <QDir>

namespace platform {

std::optional<std::filesystem::path> userTemporaryDirectory(std::uintmax_t /*room*/) {
    // The system makes one for each user, closed to all others.
    return std::filesystem::path(QDir::tempPath().toStdString());
}

} // namespace platform
