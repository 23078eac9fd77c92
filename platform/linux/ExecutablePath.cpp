#include "platform/Bundle.h"

#include <system_error>

#include <cerrno>

namespace platform {

std::filesystem::path executablePath() {
    std::error_code error;
    return std::filesystem::read_symlink("/proc/self/exe", error);
}

std::string programName() {
    return program_invocation_short_name;
}

} // namespace platform
