#include "app/ApplicationIcon.h"

#include "platform/Bundle.h"
#include "platform/File.h"

#include <cstddef>
#include <system_error>

#include <QApplication>

namespace app {

QPixmap applicationIcon() {
    // The file contains raw pixels, because Qt would load all image plugins to read any format.
    constexpr int kSide = 64;
    const bool isDense = qApp->devicePixelRatio() > 1;
    const int side = isDense ? 2 * kSide : kSide;
    const std::size_t size =
        std::size_t{4} * static_cast<unsigned>(side) * static_cast<unsigned>(side);
    const auto bundle = platform::Bundle::mainBundle();
    const auto path = bundle ? bundle->pathForResource(isDense ? "AppIcon@2x.rgba" : "AppIcon.rgba")
                             : std::nullopt;
    std::error_code error;
    const auto pixels = path ? platform::readRegularFile(*path, size, error) : base::Data();
    if (pixels.size() != size) {
        return {};
    }
    QPixmap icon = QPixmap::fromImage(
        QImage(reinterpret_cast<const uchar*>(pixels.data()), side, side, QImage::Format_RGBA8888));
    icon.setDevicePixelRatio(isDense ? 2 : 1);
    return icon;
}

} // namespace app
