#include "store/FastSpringSubscriptionParser.h"

#include "store/ElementTable.h"

namespace store {
namespace {

using Record = FastSpringSubscription;

constexpr Element<Record> kElements[] = {
    {"cancelable", &Record::isCancelable},
    {"company", &Record::customerCompany},
    {"customerurl", &Record::customerURL},
    {"email", &Record::customerEmail},
    {"end", &Record::endDate},
    {"firstname", &Record::customerFirstName},
    {"lastname", &Record::customerLastName},
    {"phonenumber", &Record::customerPhoneNumber},
    {"productname", &Record::productName},
    {"quantity", &Record::quantity},
    {"reference", &Record::reference},
    {"referrer", &Record::referrer},
    {"sourcecampaign", &Record::sourceCampaign},
    {"sourcekey", &Record::sourceKey},
    {"sourcename", &Record::sourceName},
    {"status", &Record::status},
    {"statuschanged", &Record::statusChangedDate},
    {"statusreason", &Record::statusReason},
    {"test", &Record::isTest},
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

void FastSpringSubscriptionParser::endElement(std::string_view elementName, std::string_view text) {
    storeElement(kElements, elementName, text, subscription.get());
}

} // namespace store
