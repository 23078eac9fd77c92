#include "platform/Bundle.h"

#include <mutex>

namespace platform {
namespace {

struct MainBundle {
    std::mutex mutex;
    // Kept, because an uninstaller may delete the files around it before it goes to the Trash.
    std::optional<Bundle> bundle = Bundle::around(executablePath());
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
    if (const auto found = around(executablePath())) {
        const std::lock_guard lock(main().mutex);
        main().bundle = found;
    }
}

} // namespace platform
