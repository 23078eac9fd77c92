#pragma once

#include <string_view>

namespace store {

/// Returns the URL of the store service's script, to which each request adds its query. The URL has
/// the scheme http, the host from the build (`HELPER_STORE_HOST`) and the path "/fastspring.php".
/// The target `script-url` contains only this function, and tests replace it.
[[nodiscard]] std::string_view scriptURL();

} // namespace store
