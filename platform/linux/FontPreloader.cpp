#include "platform/FontPreloader.h"

#include <system_error>

#include <dlfcn.h>

namespace platform {

FontPreloader::FontPreloader() noexcept {
    // Load the library here, so that the thread does not wait for the main thread's loading.
    void* const library = dlopen("libfontconfig.so.1", RTLD_NOW | RTLD_LOCAL);
    void* const function = library != nullptr ? dlsym(library, "FcInit") : nullptr;
    if (function == nullptr) {
        return;
    }
    try {
        thread_ = std::thread(reinterpret_cast<int (*)()>(function));
    } catch (const std::system_error&) {
        return; // Qt reads the configuration
    }
}

FontPreloader::~FontPreloader() {
    if (thread_.joinable()) {
        thread_.join();
    }
}

} // namespace platform
