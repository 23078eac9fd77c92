#include "app/Application.h"
#include "app/RunThrottle.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/UserDefaults.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <iterator>
#include <optional>
#include <string_view>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

constexpr int kWrongUsage = 2;

/// Opens the null device in place of each standard stream that is closed. The next file or
/// connection would take its number otherwise, and log lines would go into that.
void openClosedStreams() {
    for (const int stream : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(stream, F_GETFD) < 0) {
            static_cast<void>(open("/dev/null", O_RDWR)); // gets the lowest number that is free
        }
    }
}

/// Loads the application library of the bundle, with all that it needs, and runs it.
int runApplication(const platform::Bundle& bundle, int argumentCount, char** arguments) {
    const std::filesystem::path library = bundle.frameworksPath() / HELPER_APPLICATION_LIBRARY;
    // All symbols at once, so that what is missing is missed here and not in the middle of a
    // removal.
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

/// Options of two dashes that Qt takes as well as with one.
constexpr std::string_view kToolkitOptions[] = {
    "display",
    "fontengine",
    "geometry",
    "icon",
    "name",
    "platform",
    "plugin",
    "platformtheme",
    "platformpluginpath",
    "qwindowgeometry",
    "qwindowtitle",
    "reverse",
    "session",
    "style",
    "stylesheet",
    "sync",
    "title",
    "qwindowicon",
};

bool isOfToolkit(std::string_view option) {
    const auto name = option.substr(2, option.find('=') - 2);
    return std::find(std::begin(kToolkitOptions), std::end(kToolkitOptions), name) !=
           std::end(kToolkitOptions);
}

/// Obeys an option that asks about the program itself, which counts as no run.
/// @return the exit status; none where there is more to do.
std::optional<int> handleOption(std::string_view option) {
    if (option == "--version") {
        std::puts("Subscription Helper " HELPER_VERSION);
        return EXIT_SUCCESS;
    }
    if (option == "--help" || option == "-h") {
        std::puts("Usage: \"Subscription Helper\" [--help | --version | --check [--json]]\n\n"
                  "Helps a customer to leave " HELPER_PRODUCT_NAME
                  ": shows one window and, on request,\n"
                  "cancels the subscription at the store, starts the uninstaller and moves itself\n"
                  "to the Trash. Works at most once in four hours; a start in between, or one\n"
                  "without a subscription, ends at once with status 0.\n\n"
                  "--check prints what a start would find, and is none; status 1 when something\n"
                  "is not right. The time of the last run is kept in\n" HELPER_IDENTIFIER
                  ".conf in the user's configuration directory.");
        return EXIT_SUCCESS;
    }
    if (option.starts_with("--") && option != "--check" && !isOfToolkit(option)) {
        std::fprintf(stderr, "There is no option %.*s; --help tells what there is\n",
                     static_cast<int>(option.size()), option.data());
        return kWrongUsage;
    }
    return std::nullopt;
}

} // namespace

int main(int argumentCount, char** arguments) {
    openClosedStreams();
    platform::logUncaughtFailures();
    const std::string_view option = argumentCount > 1 ? arguments[1] : "";
    if (const auto status = handleOption(option)) {
        return *status;
    }
    const auto bundle = platform::Bundle::mainBundle();
    if (!bundle) {
        platform::log("Not started from an application bundle, so there is nothing to do: %@",
                      {platform::executablePath().native()});
        return EXIT_FAILURE;
    }
    if (option != "--check" && !app::passRunThrottle(platform::UserDefaults(HELPER_IDENTIFIER))) {
        return EXIT_SUCCESS;
    }
    return runApplication(*bundle, argumentCount, arguments);
}
