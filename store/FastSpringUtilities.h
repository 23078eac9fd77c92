#pragma once

#include "store/FastSpringOrder.h"
#include "store/FastSpringSubscription.h"

#include <memory>

namespace store {

/// The requests to the store service. Each function sends one HTTP GET to scriptURL(), waits for
/// the whole answer on the calling thread (within base::FetchLimits), and parses it there. Call the
/// functions on any thread, in any order, because they share no state. They send a request once,
/// without retries, a cache or a log line.
///
/// The reference goes into the request exactly as given, without escaping. A reference with an
/// ampersand ends there for the store service. A reference that makes an invalid URL counts as an
/// unanswered request. An empty text is present. The store identifier is never sent.
class FastSpringUtilities {
  public:
    FastSpringUtilities() = delete;

    /// Looks up a subscription. The store identifier may be absent.
    /// @return null if the reference is absent (without a request), if the request stays
    /// unanswered, or if the answer lacks a subscription.
    /// @throws std::out_of_range if the answer contains a date without "Z".
    [[nodiscard]] static std::shared_ptr<FastSpringSubscription>
    subscriptionForStore(const Text& store, const Text& reference);

    /// Cancels a subscription.
    /// @return true if a "subscription" element starts in the answer, which confirms the
    /// cancellation. False without a request if the store identifier or the reference is absent.
    /// @throws std::out_of_range if the answer contains a date without "Z".
    [[nodiscard]] static bool cancelSubscriptionForStore(const Text& store, const Text& reference);

    /// Looks up an order.
    /// @return null if the store identifier or the reference is absent (without a request), if the
    /// request stays unanswered, or if the answer lacks an order.
    /// @throws std::out_of_range if the answer contains a date without "Z".
    /// @throws std::invalid_argument if a container of the order ends without a current record.
    [[nodiscard]] static std::shared_ptr<FastSpringOrder> orderForStore(const Text& store,
                                                                        const Text& reference);
};

} // namespace store
