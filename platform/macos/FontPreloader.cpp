#include "platform/FontPreloader.h"

namespace platform {

FontPreloader::FontPreloader() noexcept = default;
FontPreloader::~FontPreloader() = default;

} // namespace platform
