#include "platform/Bundle.h"

#include <system_error>

namespace platform {

const std::filesystem::path& executablePath() {
    // Asked once: the link follows the file when the bundle is moved to the Trash.
    static const std::filesystem::path path = [] {
        std::error_code error;
        return std::filesystem::read_symlink("/proc/self/exe", error);
    }();
    return path;
}

} // namespace platform
