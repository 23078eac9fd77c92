// Any answer gives a record, none, or the one failure that a subscription's date can be.
#include "store/FastSpringSubscriptionParser.h"
#include "tests/fuzz/Fuzz.h"

#include <stdexcept>

void fuzz(std::string_view input) {
    store::FastSpringSubscriptionParser parser(input);
    try {
        const auto record = parser.parseSubscription();
        require(record == parser.subscription);
    } catch (const std::out_of_range&) {
        require(!parser.isParsingError);
    }
}
