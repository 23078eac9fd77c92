#include "store/FastSpringSubscriptionParser.h"

#include "store/ElementTable.h"

namespace store {
namespace {

using Record = FastSpringSubscription;

constexpr Element<Record> kElements[] = {
    {"end", &Record::endDate},
    {"test", &Record::isTest},
    {"email", &Record::customerEmail},
    {"status", &Record::status},
    {"company", &Record::customerCompany},
    {"lastname", &Record::customerLastName},
    {"quantity", &Record::quantity},
    {"referrer", &Record::referrer},
    {"firstname", &Record::customerFirstName},
    {"reference", &Record::reference},
    {"sourcekey", &Record::sourceKey},
    {"cancelable", &Record::isCancelable},
    {"sourcename", &Record::sourceName},
    {"customerurl", &Record::customerURL},
    {"phonenumber", &Record::customerPhoneNumber},
    {"productname", &Record::productName},
    {"statusreason", &Record::statusReason},
    {"statuschanged", &Record::statusChangedDate},
    {"sourcecampaign", &Record::sourceCampaign},
};
static_assert(isElementTable<Record>(kElements));

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
