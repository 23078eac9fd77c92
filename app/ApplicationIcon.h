#pragma once

#include <QPixmap>

namespace app {

/// Returns the main bundle's icon with a side of 64 device-independent pixels, at twice the
/// resolution on a dense screen. Returns a null pixmap if the bundle's icon is missing or
/// unreadable. Main thread.
[[nodiscard]] QPixmap applicationIcon();

} // namespace app
