// Any answer gives an order without holes in its lists, none, or one of the two failures.
#include "store/FastSpringOrderParser.h"
#include "tests/fuzz/Fuzz.h"

#include <stdexcept>

namespace {

template <class Items>
void requireWhole(const Items& items) {
    for (const auto& item : items ? *items : typename Items::value_type{}) {
        require(item != nullptr);
    }
}

} // namespace

void fuzz(std::string_view input) {
    try {
        if (const auto order = store::FastSpringOrderParser(input).parseOrder()) {
            requireWhole(order->orderItems);
            requireWhole(order->payments);
        }
    } catch (const std::out_of_range&) {
    } catch (const std::invalid_argument&) {
    }
}
