#pragma once

#include <optional>
#include <string>
#include <system_error>

namespace app {

/// Returns the user's subscription reference: `subscriptionReference` in the product's own user
/// defaults, trimmed. Returns std::nullopt if the reference is missing or empty. On Linux the
/// product's file may have up to 1 MiB. Any thread.
/// @param error is set to the reason if an existing file cannot be read, otherwise cleared.
[[nodiscard]] std::optional<std::string> userSubscriptionReference(std::error_code& error);

/// Returns the path of the file that contains the reference, for people.
[[nodiscard]] std::string subscriptionReferenceFile();

} // namespace app
