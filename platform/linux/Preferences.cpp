#include "platform/Preferences.h"

#include "base/Handle.h"

#include <string_view>

#include <gio/gio.h>

namespace platform {
namespace {

constexpr const char* kColorScheme = "color-scheme";

using Settings = base::Handle<GSettings, g_object_unref>;

/// Returns the settings that have a key, or null. Looks before, because GIO aborts the process if a
/// schema or a key is missing.
Settings settingsWith(const char* key) {
    constexpr const char* kSchema = "org.gnome.desktop.interface";
    GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
    const base::Handle<GSettingsSchema, g_settings_schema_unref> schema(
        source != nullptr ? g_settings_schema_source_lookup(source, kSchema, TRUE) : nullptr);
    const bool isThere = schema && g_settings_schema_has_key(schema.get(), key) != FALSE;
    return Settings(isThere ? g_settings_new(kSchema) : nullptr);
}

} // namespace

bool wantsReducedMotion() {
    constexpr const char* kKey = "enable-animations";
    const Settings settings = settingsWith(kKey);
    return settings && g_settings_get_boolean(settings.get(), kKey) == FALSE;
}

bool prefersDark() {
    const Settings settings = settingsWith(kColorScheme);
    const base::Handle<char, g_free> scheme(
        settings ? g_settings_get_string(settings.get(), kColorScheme) : nullptr);
    return scheme && std::string_view(scheme.get()) == "prefer-dark";
}

void observeDarkPreference(void (*changed)()) {
    // The settings live until the process ends, because their end would end the signals.
    GSettings* const settings = settingsWith(kColorScheme).release();
    if (settings == nullptr) {
        return;
    }
    g_signal_connect_swapped(settings, "changed::color-scheme", G_CALLBACK(changed), nullptr);
    g_free(g_settings_get_string(settings, kColorScheme)); // GIO reports only keys that were read
}

} // namespace platform
