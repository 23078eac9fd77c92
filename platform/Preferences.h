#pragma once

namespace platform {

// Linux reads the settings `org.gnome.desktop.interface`, which other desktops also set.

/// Returns true if the user has asked the desktop for reduced motion, and false if the setting is
/// missing. Linux reads the key "enable-animations". macOS reads "Reduce motion". Call from any
/// thread.
[[nodiscard]] bool wantsReducedMotion();

/// Returns true if the user prefers dark windows, and false if the setting is missing. Linux reads
/// the key "color-scheme". macOS always returns false, because Qt follows its dark mode. Call from
/// any thread.
[[nodiscard]] bool prefersDark();

/// Calls a function on the main thread each time the value of prefersDark() may have changed, until
/// the process ends. macOS never calls it. Call once, on the main thread, which must run an event
/// loop of GLib or Qt.
void observeDarkPreference(void (*changed)());

} // namespace platform
