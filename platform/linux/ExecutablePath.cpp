#include "platform/Bundle.h"

#include <system_error>

namespace platform {

std::filesystem::path executablePath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

} // namespace platform
