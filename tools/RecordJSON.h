#pragma once

#include "store/FastSpringOrder.h"
#include "store/FastSpringSubscription.h"

#include <nlohmann/json.hpp>

namespace tools {

/// Returns a record as a JSON object of its properties by name, in declaration order. An absent
/// value is null, a date "YYYY-MM-DDTHH:MM:SSZ", a number a decimal integer, a list an array of
/// records.
[[nodiscard]] nlohmann::ordered_json recordJSON(const store::FastSpringSubscription& record);
[[nodiscard]] nlohmann::ordered_json recordJSON(const store::FastSpringOrder& record);

} // namespace tools
