#include "app/Application.h"
#include "app/RunThrottle.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"

#include <cstdlib>
#include <filesystem>

#include <dlfcn.h>

namespace {

/// Loads the application library of the bundle, with all that it needs, and runs it.
int runApplication(const platform::Bundle& bundle, int argumentCount, char** arguments) {
    const std::filesystem::path library = bundle.frameworksPath() / HELPER_APPLICATION_LIBRARY;
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    void* const function =
        handle != nullptr ? dlsym(handle, "subscriptionHelperApplicationMain") : nullptr;
    if (function == nullptr) {
        platform::log("The application cannot be loaded: %@", {dlerror()});
        return EXIT_FAILURE;
    }
    return reinterpret_cast<decltype(&subscriptionHelperApplicationMain)>(function)(argumentCount,
                                                                                    arguments);
}

} // namespace

int main(int argumentCount, char** arguments) {
    platform::logUncaughtFailures();
    const auto bundle = platform::Bundle::mainBundle();
    if (!bundle) {
        platform::log("Not started from an application bundle, so there is nothing to do: %@",
                      {platform::executablePath().native()});
        return EXIT_FAILURE;
    }
    if (!app::passRunThrottle(platform::UserDefaults(HELPER_IDENTIFIER))) {
        return EXIT_SUCCESS;
    }
    return runApplication(*bundle, argumentCount, arguments);
}
