#include "base/Fetch.h"

#include "base/Connection.h"

namespace base {

Fetched fetch(const URL& url, const FetchLimits& limits) {
    // Close each connection, because libcurl repeats a request if a kept connection closes before
    // an answer. A cancellation after a redirect would be sent twice.
    return Connection(Connection::Reuse::No).fetch(url, limits);
}

} // namespace base
