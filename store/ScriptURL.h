#pragma once

#include <string_view>

namespace store {

/// The URL of the store service's script, the base of every request: plain HTTP, the host that was
/// set when the library was built (`HELPER_STORE_HOST`), the path "/fastspring.php", no query.
/// The target `script-url` contains this function alone, and tests replace it.
[[nodiscard]] std::string_view scriptURL();

} // namespace store
