#include "platform/Bundle.h"

#include <cstdint>
#include <string>
#include <system_error>

#include <mach-o/dyld.h>

namespace platform {

const std::filesystem::path& executablePath() {
    static const std::filesystem::path path = []() -> std::filesystem::path {
        std::uint32_t size = 0;
        _NSGetExecutablePath(nullptr, &size);
        std::string name(size, '\0');
        if (_NSGetExecutablePath(name.data(), &size) != 0) {
            return {};
        }
        std::error_code error;
        return std::filesystem::canonical(name.c_str(), error);
    }();
    return path;
}

} // namespace platform
