#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <utility>

namespace app {

/// An optional text that one thread may set while others read it. Calls copy the text.
class AtomicText {
  public:
    using Value = std::optional<std::string>;

    [[nodiscard]] Value get() const {
        const std::lock_guard lock(mutex_);
        return value_;
    }

    void set(Value value) {
        const std::lock_guard lock(mutex_);
        value_ = std::move(value);
    }

  private:
    mutable std::mutex mutex_;
    Value value_;
};

} // namespace app
