#pragma once

namespace platform {

/// Whether the user has asked the desktop not to animate: on Linux by the key "enable-animations"
/// of the settings `org.gnome.desktop.interface`, which other desktops set as well; on macOS by
/// "Reduce motion". False where there is no such setting. Any thread.
[[nodiscard]] bool wantsReducedMotion();

} // namespace platform
