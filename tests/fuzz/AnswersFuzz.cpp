// Checks that any answer gives null, one of the two failures, or a record with complete lists.
#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"

#include <cstdlib>
#include <stdexcept>

void fuzz(std::string_view input) {
    try {
        const auto order = store::FastSpringOrderParser(input).parseOrder();
        if (order && order->orderItems) {
            for (const auto& item : *order->orderItems) {
                item ? void() : std::abort();
            }
        }
    } catch (const std::out_of_range&) {
    } catch (const std::invalid_argument&) {
    }
    try {
        store::FastSpringSubscriptionParser(input).parseSubscription();
    } catch (const std::out_of_range&) {
    }
}
