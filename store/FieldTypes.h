#pragma once

#include <chrono>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace store {

/// The field types of store records. Their values may be absent. A flag is a plain bool.
using Text = std::optional<std::string>;              ///< UTF-8, exactly as received.
using Date = std::optional<std::chrono::sys_seconds>; ///< A point in time, in UTC.
using Number = std::optional<std::uint64_t>;          ///< The bits of a signed 64-bit decimal.
template <class Record>
using List = std::optional<std::vector<std::shared_ptr<Record>>>; ///< Records in document order.

} // namespace store
