#include "platform/Motion.h"

#include "base/Handle.h"

#include <gio/gio.h>

namespace platform {

bool wantsReducedMotion() {
    constexpr const char* kSchema = "org.gnome.desktop.interface";
    constexpr const char* kKey = "enable-animations";
    // Check both first, because GIO aborts the process if a schema or a key is missing.
    GSettingsSchemaSource* const source = g_settings_schema_source_get_default();
    const base::Handle<GSettingsSchema, g_settings_schema_unref> schema(
        source != nullptr ? g_settings_schema_source_lookup(source, kSchema, TRUE) : nullptr);
    if (!schema || g_settings_schema_has_key(schema.get(), kKey) == FALSE) {
        return false;
    }
    const base::Handle<GSettings, g_object_unref> settings(g_settings_new(kSchema));
    return g_settings_get_boolean(settings.get(), kKey) == FALSE;
}

} // namespace platform
