#pragma once

#include <string>

namespace base {

/// The unchanged bytes of a file or from the network.
using Data = std::string;

} // namespace base
