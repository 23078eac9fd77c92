// Prints a subscription's status: subscription-status REF
#include "store/FastSpringUtilities.h"

#include <iostream>
#include <stdexcept>

int main(int argumentCount, char** arguments) try {
    if (argumentCount != 2) {
        std::cerr << "Usage: subscription-status REF\n";
        return 2;
    }
    const auto subscription =
        store::FastSpringUtilities::subscriptionForStore(std::nullopt, arguments[1]);
    std::cout << (subscription ? subscription->status.value_or("unknown") : "none") << "\n";
    return subscription ? 0 : 1;
} catch (const std::out_of_range&) {
    std::cerr << "The answer contains an unreadable date\n";
    return 3;
}
