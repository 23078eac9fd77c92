#include "platform/Bundle.h"

#include <mutex>

namespace platform {
namespace {

struct MainBundle {
    std::mutex mutex;
    // Determined once, because an uninstaller may delete the bundle's files before the move.
    std::optional<Bundle> bundle = Bundle::containing(executablePath());
};

MainBundle& main() {
    static MainBundle main;
    return main;
}

} // namespace

std::optional<Bundle> Bundle::mainBundle() {
    const std::lock_guard lock(main().mutex);
    return main().bundle;
}

void Bundle::findMainBundle() {
    if (const auto found = containing(executablePath())) {
        const std::lock_guard lock(main().mutex);
        main().bundle = found;
    }
}

} // namespace platform
