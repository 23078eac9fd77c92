#include "app/Application.h"
#include "app/Options.h"
#include "app/RunThrottle.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/StandardStreams.h"
#include "platform/UserDefaults.h"

#include "Brand.h"

#include <algorithm>
#include <csignal>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <span>

#include <dlfcn.h>

namespace {

constexpr int kWrongUsage = 2;

/// Sets the signal actions that this program relies on, because a launcher can pass on others.
/// A closed pipe must not end a removal, and an ignored SIGCHLD hides how child processes ended.
void setSignalActions() {
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGCHLD, SIG_DFL);
}

using Task = app::Options::Task;
using Application = decltype(&subscriptionHelperApplicationMain);

/// Loads the bundle's application library and its dependencies. Returns its function, or null with
/// the reason in dlerror().
Application loadApplication(const platform::Bundle& bundle) {
    const std::filesystem::path library = bundle.frameworksPath() / HELPER_APPLICATION_LIBRARY;
    // Resolve all symbols now, so a missing one fails here. The application itself looks for the
    // removal's libraries.
    void* const handle = dlopen(library.c_str(), RTLD_NOW | RTLD_LOCAL);
    return handle != nullptr
               ? reinterpret_cast<Application>(dlsym(handle, "subscriptionHelperApplicationMain"))
               : nullptr;
}

/// Runs the application, or logs why it cannot be loaded.
int runApplication(const platform::Bundle& bundle, const app::Options& options, int argumentCount,
                   char** arguments) {
    if (const Application application = loadApplication(bundle)) {
        return application(options, argumentCount, arguments);
    }
    platform::log("The application cannot be loaded: %@", {dlerror()});
    return EXIT_FAILURE;
}

/// Runs or checks the application. A check skips the throttle, because it is not a run.
int run(const app::Options& options, int argumentCount, char** arguments) {
    const auto bundle = platform::Bundle::mainBundle();
    if (!bundle) {
        platform::log("Cannot start outside of an application bundle: %@",
                      {platform::executablePath().native()});
        return EXIT_FAILURE;
    }
    if (options.task == Task::Run &&
        !app::passRunThrottle(platform::UserDefaults(HELPER_IDENTIFIER))) {
        return EXIT_SUCCESS;
    }
    return runApplication(*bundle, options, argumentCount, arguments);
}

int showHelp() {
    std::puts("Usage: \"Subscription Helper\" [--help | --version | --check [--json] [--ask]]\n\n"
              "Helps a customer to leave " HELPER_PRODUCT_NAME
              ": shows one window and, on request,\n"
              "cancels the subscription at the store, starts the uninstaller and moves itself\n"
              "to the Trash. Runs at most once in four hours, and a start in between exits with\n"
              "0 immediately. Without a subscription, it exits with 0 after the lookup.\n\n"
              "--check  Check the installation without running. Exits with 1 if a check fails.\n"
              "--json   Print the results as JSON.\n"
              "--ask    Also look the subscription up at the store service.\n\n"
              "The time of the last run is kept in\n" HELPER_IDENTIFIER
              ".conf in the user's configuration directory.");
    return EXIT_SUCCESS;
}

} // namespace

int main(int argumentCount, char** arguments) {
    platform::openClosedStreams();
    setSignalActions();
    platform::logUncaughtFailures();
    const std::span<char*> all(arguments, static_cast<std::size_t>(argumentCount));
    const app::Options options = app::optionsOf(all.subspan(std::min<std::size_t>(1, all.size())));
    switch (options.task) {
    case Task::ShowVersion:
        std::puts("Subscription Helper " HELPER_VERSION);
        return EXIT_SUCCESS;
    case Task::ShowHelp:
        return showHelp();
    case Task::Refuse:
        std::fprintf(stderr, "Unknown option %.*s. --help lists the options.\n",
                     static_cast<int>(options.unknown.size()), options.unknown.data());
        return kWrongUsage;
    case Task::Run:
    case Task::Check:
        break;
    }
    return run(options, argumentCount, arguments);
}
