#pragma once

#include <optional>
#include <string>

namespace app {

/// The reference of the subscription that the user has: `subscriptionReference` in the product's
/// own user defaults, without blanks around it, which are those of the line that the product wrote.
/// A missing or empty one is none. Any thread.
[[nodiscard]] std::optional<std::string> userSubscriptionReference();

/// Where it is read, for people.
[[nodiscard]] std::string subscriptionReferencePlace();

} // namespace app
