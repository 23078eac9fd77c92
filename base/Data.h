#pragma once

#include <string>

namespace base {

/// Bytes as they came from a file or the network.
using Data = std::string;

} // namespace base
