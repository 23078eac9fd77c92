#include "platform/Bundle.h"

#include <cstdint>
#include <cstdlib>
#include <string>
#include <system_error>

#include <mach-o/dyld.h>

namespace platform {

std::filesystem::path executablePath() {
    std::uint32_t size = 0;
    _NSGetExecutablePath(nullptr, &size);
    std::string name(size, '\0');
    if (_NSGetExecutablePath(name.data(), &size) != 0) {
        return {};
    }
    std::error_code error;
    return std::filesystem::canonical(name.c_str(), error);
}

std::string programName() {
    return getprogname();
}

} // namespace platform
