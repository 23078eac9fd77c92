#pragma once

#include "base/Fetch.h"

#include <functional>
#include <optional>
#include <string>

namespace store {

/// What the store service can be asked.
enum class Request { GetSubscription, DeleteSubscription, GetOrder };

/// How a request ended.
struct Answer {
    /// The address that was asked, or, where `isSent` is false, the text that makes none.
    std::string address;
    /// Whether the reference made an address, so that a request was sent.
    bool isSent = false;
    /// The answer's body, whatever it holds; none when there was no whole answer.
    std::optional<base::Data> data;
    /// The reason for an absent body, in libcurl's words. The store service may have obeyed the
    /// request nevertheless.
    std::string failure;
    /// The HTTP status of the answer, or 0 if the body is absent.
    int status = 0;
};

/// Fetches a resource within limits, as base::fetch().
using Fetcher = std::function<base::Fetched(const base::URL& url, const base::FetchLimits& limits)>;

/// Sends one request for `reference`, which goes into it exactly as it stands, without escaping,
/// and waits for the whole answer on the calling thread. Caches and logs nothing. Any thread that
/// `fetcher` allows.
/// @param fetcher sends the request. base::fetch() sends it once. A lookup can be sent over a kept
/// connection (base::Connection), because it is safe to repeat.
[[nodiscard]] Answer ask(Request request, const std::string& reference,
                         const base::FetchLimits& limits = {},
                         const Fetcher& fetcher = base::fetch);

} // namespace store
