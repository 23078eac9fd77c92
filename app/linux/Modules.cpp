#include "app/Modules.h"

#include "app/linux/ModuleTables.h"
#include "platform/Bundle.h"

#include <filesystem>
#include <optional>
#include <system_error>

#include <dlfcn.h>
#include <link.h>

namespace app {
namespace {

constexpr const char* kFetch = "SubscriptionHelperFetch.so";
constexpr const char* kDesktop = "SubscriptionHelperDesktop.so";

std::filesystem::path pathOf(const char* fileName) {
    const auto bundle = platform::Bundle::mainBundle();
    return bundle ? bundle->frameworksPath() / fileName : fileName;
}

bool isThere(const std::filesystem::path& path) {
    std::error_code error;
    return std::filesystem::exists(path, error);
}

/// A library of the bundle, which the constructor loads for the rest of the process.
template <class Table>
class Module {
  public:
    explicit Module(const char* fileName) {
        const auto path = pathOf(fileName);
        // Use a separate scope, because the linker would search the module's libraries for Qt's
        // symbols, and Qt's for the module's.
        void* const library = dlopen(path.c_str(), RTLD_NOW | RTLD_LOCAL);
        const void* const table = library != nullptr ? dlsym(library, kModuleTable) : nullptr;
        table_ = static_cast<const Table*>(table);
        if (table_ == nullptr) {
            failure_ = dlerror();
        }
    }

    /// Returns the module's functions, or null if the library cannot be loaded.
    [[nodiscard]] const Table* table() const { return table_; }
    /// Returns the reason why the library cannot be loaded, or an empty text.
    [[nodiscard]] const std::string& failure() const { return failure_; }

  private:
    const Table* table_ = nullptr;
    std::string failure_;
};

const Module<FetchModule>& fetchModule() {
    static const Module<FetchModule> module(kFetch);
    return module;
}

const Module<DesktopModule>& desktopModule() {
    static const Module<DesktopModule> module(kDesktop);
    return module;
}

bool isLoaded(const char* library) {
    return dlopen(library, RTLD_LAZY | RTLD_NOLOAD) != nullptr;
}

/// Returns the desktop module, or null unless Qt's GTK theme has loaded GIO, because loading it
/// here would delay the window. Qt itself follows the dark style of desktops without GTK.
const DesktopModule* moduleOfGnome() {
    return isLoaded("libgio-2.0.so.0") ? desktopModule().table() : nullptr;
}

/// Returns true if the files of the desktop module and of GIO exist. GIO is in the directory of
/// GLib, which Qt has loaded, because both belong to one package.
bool isDesktopThere() {
    void* const glib = dlopen("libglib-2.0.so.0", RTLD_LAZY | RTLD_NOLOAD);
    const link_map* map = nullptr;
    return glib != nullptr && dlinfo(glib, RTLD_DI_LINKMAP, &map) == 0 &&
           isThere(pathOf(kDesktop)) &&
           isThere(std::filesystem::path(map->l_name).replace_filename("libgio-2.0.so.0"));
}

} // namespace

std::string loadModules(bool all) {
    if (const auto& failure = fetchModule().failure(); !failure.empty()) {
        return failure;
    }
    // Load the desktop module now if all are wanted, or if one of its files is missing, because the
    // failed load gives the reason.
    return !all && isDesktopThere() ? std::string() : desktopModule().failure();
}

} // namespace app

// These definitions pass calls on to the modules.

base::Fetched base::fetch(const URL& url, const FetchLimits& limits) {
    const auto& module = app::fetchModule();
    return module.table() != nullptr ? module.table()->fetch(url, limits)
                                     : Fetched{std::nullopt, module.failure()};
}

std::error_code platform::desktop::moveToTrash(const std::filesystem::path& item) {
    const auto* const module = app::desktopModule().table();
    return module != nullptr ? module->moveToTrash(item)
                             : std::make_error_code(std::errc::function_not_supported);
}

std::error_code platform::desktop::checkTrash(const std::filesystem::path& item,
                                              std::filesystem::path& culprit) {
    const auto* const module = app::desktopModule().table();
    return module != nullptr ? module->checkTrash(item, culprit)
                             : std::make_error_code(std::errc::function_not_supported);
}

std::shared_ptr<void> platform::desktop::holdLogout(const std::string& identifier,
                                                    const std::string& reason) {
    const auto* const module = app::desktopModule().table();
    return module != nullptr ? module->holdLogout(identifier, reason) : nullptr;
}

bool platform::wantsReducedMotion() {
    const auto* const module = app::desktopModule().table();
    return module != nullptr && module->wantsReducedMotion();
}

bool platform::prefersDark() {
    const auto* const module = app::moduleOfGnome();
    return module != nullptr && module->prefersDark();
}

void platform::observeDarkPreference(void (*changed)()) {
    if (const auto* const module = app::moduleOfGnome()) {
        module->observeDarkPreference(changed);
    }
}
