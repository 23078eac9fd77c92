#include "store/FastSpringSubscriptionParser.h"

#include "store/ElementTable.h"

namespace store {
namespace {

constexpr ElementTable kElements{kFields<FastSpringSubscription>};

} // namespace

std::shared_ptr<FastSpringSubscription> FastSpringSubscriptionParser::parseSubscription() {
    parse();
    return subscription;
}

bool FastSpringSubscriptionParser::startContainer(std::string_view elementName) {
    if (elementName != "subscription") {
        return false;
    }
    subscription = std::make_shared<FastSpringSubscription>();
    return true;
}

void FastSpringSubscriptionParser::endElement(std::string_view elementName, ElementText& text) {
    storeElement(*this, kElements, elementName, text, subscription.get());
}

} // namespace store
