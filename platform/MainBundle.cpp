#include "platform/Bundle.h"

namespace platform {

std::optional<Bundle> Bundle::mainBundle() {
    // Once: an uninstaller may delete the files that it is known by, and it has to be trashed then.
    static const std::optional<Bundle> bundle = around(executablePath());
    return bundle;
}

} // namespace platform
