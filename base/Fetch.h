#pragma once

#include "base/Data.h"
#include "base/URL.h"

#include <chrono>
#include <cstddef>
#include <optional>
#include <string>

namespace base {

/// The limits of one fetch. A transfer that exceeds a limit fails, and its data is absent.
struct FetchLimits {
    std::chrono::milliseconds connect = std::chrono::seconds(10); ///< Until connected.
    /// The request from end to end. Time in which the process was stopped does not count.
    std::chrono::milliseconds whole = std::chrono::seconds(30);
    std::size_t body = std::size_t{1} << 20U;     ///< Bytes of the body, without chunk sizes.
    std::size_t headers = std::size_t{64} * 1024; ///< Bytes of all headers, with redirects'.
    long redirects = 5;                           ///< Number of redirects.
};

/// The outcome of a fetch.
struct Fetched {
    /// The body for any HTTP status. An empty body is data of zero bytes. Absent if the transfer
    /// failed, was cut off, or exceeded a limit.
    std::optional<Data> data;
    /// The reason for absent data, in English: libcurl's, or one of this library's.
    std::string failure;
    /// The HTTP status of the last answer, or 0 if the data is absent.
    int status = 0;
};

/// Fetches the whole resource at `url` with one HTTP GET. Blocks the calling thread until the body
/// has arrived or the transfer has failed. Sends only libcurl's own headers, without cookies or
/// stored credentials, and never retries. Uses the environment's proxy settings, and follows
/// redirects to `http` and `https` only. Any number of threads may call it at the same time.
[[nodiscard]] Fetched fetch(const URL& url, const FetchLimits& limits = {});

} // namespace base
