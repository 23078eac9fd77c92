#pragma once

namespace platform {

/// Returns true if the user has asked the desktop for reduced motion, and false if the setting is
/// missing. Linux reads the key "enable-animations" of the settings `org.gnome.desktop.interface`,
/// which other desktops also set. macOS reads "Reduce motion". Call from any thread.
[[nodiscard]] bool wantsReducedMotion();

} // namespace platform
