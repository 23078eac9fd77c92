#pragma once

#include "base/Fetch.h"

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
    /// Why there is none, in libcurl's words. The store may have obeyed the request all the same.
    std::string failure;
};

/// Sends one request for `reference`, which goes into it exactly as it stands, without escaping,
/// and waits for the whole answer on the calling thread. Nothing is retried, cached or logged. Any
/// thread.
[[nodiscard]] Answer ask(Request request, const std::string& reference,
                         const base::FetchLimits& limits = {});

} // namespace store
