#pragma once

#include <QColor>
#include <QPalette>

namespace app {

/// Returns `wanted` if its contrast with the window's background is at least 3:1, as the Web
/// Content Accessibility Guidelines 2.1 demand of controls. Otherwise returns the first mixture
/// with the color of the window's text that has this contrast, or that color itself.
[[nodiscard]] QColor visibleColor(const QColor& wanted, const QPalette& palette);

} // namespace app
