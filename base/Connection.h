#pragma once

#include "base/Fetch.h"

#include <memory>

namespace base {

/// Fetches resources one after the other, as fetch() does, over connections that can be kept. For
/// one thread at a time.
///
/// libcurl repeats a request on a new connection if a kept one closes before an answer. Keep
/// connections only for requests that are safe to repeat, such as lookups.
class Connection {
  public:
    enum class Reuse { No, Yes };

    explicit Connection(Reuse reuse);
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;
    ~Connection();

    /// Fetches the whole resource at `url`, as fetch().
    [[nodiscard]] Fetched fetch(const URL& url, const FetchLimits& limits);

  private:
    struct Handles;
    std::unique_ptr<Handles> handles_;
};

} // namespace base
