#pragma once

#include <string>

namespace demo {

/// The XML answer to a get-order request: "ORDER-2001" has a purchaser, three line items and two
/// payments; "ORDER-2002" one of each and no purchaser; "ORDER-2003" is a test order whose
/// container of line items is empty. Any other reference gets an error.
[[nodiscard]] std::string orderAnswer(const std::string& reference);

} // namespace demo
