#pragma once

#include <string>

namespace demo {

/// Returns the XML answer to a get-order request. "ORDER-2001" has a purchaser, three line items
/// and two payments. "ORDER-2002" has one line item and one payment, without a purchaser.
/// "ORDER-2003" is a test order with an empty container of line items. Any other reference gets an
/// error.
[[nodiscard]] std::string orderAnswer(const std::string& reference);

} // namespace demo
