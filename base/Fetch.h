#pragma once

#include "base/Data.h"
#include "base/URL.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace base {

/// The bounds of one fetch. A transfer that passes one of them yields no data.
struct FetchLimits {
    std::chrono::milliseconds connect = std::chrono::seconds(10); ///< until connected
    /// The request from end to end. Time in which the process was stopped does not count.
    std::chrono::milliseconds whole = std::chrono::seconds(30);
    std::size_t body = std::size_t{1} << 20U;     ///< bytes of body, without chunk frames
    std::size_t headers = std::size_t{64} * 1024; ///< bytes of all header lines, of redirects too
    long redirects = 5;                           ///< how many are followed
};

/// What became of a fetch.
struct Fetched {
    /// The body, whatever the HTTP status; an empty one is data of zero bytes. None when the
    /// transfer failed, was cut off, or passed a limit.
    std::optional<Data> data;
    /// The reason for absent data, in libcurl's words.
    std::string failure;
    /// The HTTP status of the last answer, or 0 if the data is absent.
    int status = 0;
};

/// Fetches the whole resource at `url` with one HTTP GET on the calling thread, which it blocks
/// until the body has arrived or the transfer has failed. No headers of its own, no cookies, no
/// stored credentials, no retry; the proxy settings of the environment hold. Redirects are followed
/// to `http` and `https` only. May be called from any number of threads.
[[nodiscard]] Fetched fetch(const URL& url, const FetchLimits& limits = {});

} // namespace base
