#include "base/Fetch.h"

#include "base/Connection.h"

namespace base {

Fetched fetch(const URL& url, const FetchLimits& limits) {
    // On a kept connection that closes without an answer libcurl sends a request again: a
    // cancellation after a redirect would be sent twice.
    return Connection(Connection::Reuse::no).fetch(url, limits);
}

} // namespace base
