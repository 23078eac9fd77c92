#pragma once

#include "base/Fetch.h"

#include <functional>
#include <optional>
#include <string>

namespace store {

/// The requests that the store service understands.
enum class Request { GetSubscription, DeleteSubscription, GetOrder };

/// The outcome of a request.
struct Answer {
    /// The requested URL, or an invalid URL if `isSent` is false.
    std::string address;
    /// True if the request was sent, because the reference made a valid URL.
    bool isSent = false;
    /// The answer's body with any content, absent if the answer is missing or incomplete.
    std::optional<base::Data> data;
    /// The reason for an absent body, see base::Fetched. The store service may have obeyed the
    /// request nevertheless.
    std::string failure;
    /// The HTTP status of the answer, or 0 if the body is absent.
    int status = 0;
};

/// A function that fetches a resource within limits, such as base::fetch().
using Fetcher = std::function<base::Fetched(const base::URL& url, const base::FetchLimits& limits)>;

/// Sends one request and waits for the whole answer on the calling thread, without a cache or a log
/// line. Call it on any thread that `fetcher` allows.
/// @param reference goes into the request exactly as given, without escaping.
/// @param fetcher sends the request. base::fetch() sends it once. A lookup can be sent over a kept
/// connection (base::Connection), because it is safe to repeat.
[[nodiscard]] Answer ask(Request request, const std::string& reference,
                         const base::FetchLimits& limits = {},
                         const Fetcher& fetcher = base::fetch);

} // namespace store
