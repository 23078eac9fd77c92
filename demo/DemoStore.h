#pragma once

#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace demo {

/// The state of the demo store service, in memory. Every operation may be called from any thread.
class DemoStore {
  public:
    /// Creates three subscriptions. "DEMO-1001" and "DEMO-1002" can be canceled, "DEMO-KEEP"
    /// cannot.
    DemoStore();

    /// Returns the XML answer to a get-subscription request: the subscription, or an error for an
    /// unknown reference. Account pages have addresses on `host`.
    [[nodiscard]] std::string subscriptionAnswer(const std::string& reference,
                                                 const std::string& host) const;
    /// Cancels a subscription.
    /// @return the canceled subscription, or an error if the reference is unknown or the
    /// subscription cannot be canceled.
    [[nodiscard]] std::string cancelAnswer(const std::string& reference, const std::string& host);
    /// Returns the account page of a subscription in HTML, or std::nullopt if the reference is
    /// unknown.
    [[nodiscard]] std::optional<std::string> accountPage(const std::string& reference) const;

  private:
    struct Subscription {
        std::string firstName;
        std::string lastName;
        std::string email;
        bool isCancelable = true;
        std::string status = "active";
        std::string statusChanged = "2026-03-15T08:30:00.000Z";
        std::string statusReason = {};
    };

    static std::string answer(const std::string& reference, const Subscription& subscription,
                              const std::string& host);

    mutable std::mutex mutex_;
    std::map<std::string, Subscription> subscriptions_;
};

} // namespace demo
