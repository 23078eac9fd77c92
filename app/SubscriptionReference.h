#pragma once

#include <optional>
#include <string>
#include <system_error>

namespace app {

/// Returns the reference of the user's subscription: `subscriptionReference` in the product's own
/// user defaults, without blanks around it. Returns std::nullopt if it is missing or empty. On
/// Linux the product's file may have 1 MiB. Any thread.
/// @param error why an existing file could not be read, or empty.
[[nodiscard]] std::optional<std::string> userSubscriptionReference(std::error_code& error);

/// Returns the path of the file that it is read from, for people.
[[nodiscard]] std::string subscriptionReferenceFile();

} // namespace app
