#include "app/SubscriptionReference.h"

#include "Brand.h"
#include "platform/UserDefaults.h"

#include <cstddef>

namespace app {
namespace {

constexpr const char* kKey = "subscriptionReference";
constexpr std::size_t kLargestFile = std::size_t{1} << 20U; // other settings of the product

platform::UserDefaults productDefaults() {
    return platform::UserDefaults(HELPER_PRODUCT_DOMAIN);
}

} // namespace

std::optional<std::string> userSubscriptionReference(std::error_code& error) {
    constexpr const char* kBlanks = " \t\n\v\f\r";
    const auto text = productDefaults().text(kKey, kLargestFile, error);
    const auto start = text ? text->find_first_not_of(kBlanks) : std::string::npos;
    if (start == std::string::npos) {
        return std::nullopt;
    }
    return text->substr(start, text->find_last_not_of(kBlanks) + 1 - start);
}

std::string subscriptionReferenceFile() {
    return productDefaults().location();
}

} // namespace app
