#pragma once

#include "store/FastSpringOrder.h"
#include "store/FastSpringSubscription.h"

#include <memory>

namespace store {

/// The requests to the store service. Each sends one HTTP GET to scriptURL(), waits for the whole
/// answer on the calling thread (within the limits of base::FetchLimits), and parses it there.
/// No state: call any of them from any thread, in any order. Nothing is retried, cached or logged.
///
/// The reference goes into the request exactly as given, without escaping: one that holds an
/// ampersand ends the value there, and one that makes no URL fails like a fetch that gives no data.
/// An empty text is present. The store identifier is never sent.
class FastSpringUtilities {
  public:
    FastSpringUtilities() = delete;

    /// The subscription with this reference, or none: no reference (nothing is sent then), no
    /// answer, or an answer without a subscription. A missing store identifier stops nothing.
    ///
    /// @throws std::out_of_range when the answer holds a date text without "Z".
    [[nodiscard]] static std::shared_ptr<FastSpringSubscription>
    subscriptionForStore(const Text& store, const Text& reference);

    /// Cancels the subscription with this reference. True when the store service confirmed it with
    /// an answer in which a "subscription" element starts, whatever it holds. False otherwise, and,
    /// with nothing sent, when the store identifier or the reference is missing.
    ///
    /// @throws std::out_of_range when the answer holds a date text without "Z".
    [[nodiscard]] static bool cancelSubscriptionForStore(const Text& store, const Text& reference);

    /// The order with this reference, or none: no answer, an answer without an order, or, with
    /// nothing sent, a missing store identifier or reference.
    ///
    /// @throws std::out_of_range when the answer holds a date text without "Z".
    /// @throws std::invalid_argument when a container of the answer's order ends without a record.
    [[nodiscard]] static std::shared_ptr<FastSpringOrder> orderForStore(const Text& store,
                                                                        const Text& reference);
};

} // namespace store
