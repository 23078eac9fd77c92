#include "tools/RecordJSON.h"

#include "platform/DateText.h"

namespace tools {
namespace {

using nlohmann::ordered_json;

ordered_json valueJSON(bool flag) {
    return flag;
}

ordered_json valueJSON(const store::Text& text) {
    return text ? ordered_json(*text) : ordered_json();
}

ordered_json valueJSON(const store::Date& date) {
    return date ? ordered_json(platform::dateText(*date)) : ordered_json();
}

ordered_json valueJSON(const store::Number& number) {
    return number ? ordered_json(*number) : ordered_json();
}

} // namespace

ordered_json recordJSON(const store::FastSpringSubscription& record) {
    ordered_json object;
    object["reference"] = valueJSON(record.reference);
    object["status"] = valueJSON(record.status);
    object["statusChangedDate"] = valueJSON(record.statusChangedDate);
    object["statusReason"] = valueJSON(record.statusReason);
    object["isCancelable"] = valueJSON(record.isCancelable);
    object["isTest"] = valueJSON(record.isTest);
    object["referrer"] = valueJSON(record.referrer);
    object["sourceName"] = valueJSON(record.sourceName);
    object["sourceKey"] = valueJSON(record.sourceKey);
    object["sourceCampaign"] = valueJSON(record.sourceCampaign);
    object["customerFirstName"] = valueJSON(record.customerFirstName);
    object["customerLastName"] = valueJSON(record.customerLastName);
    object["customerCompany"] = valueJSON(record.customerCompany);
    object["customerEmail"] = valueJSON(record.customerEmail);
    object["customerPhoneNumber"] = valueJSON(record.customerPhoneNumber);
    object["customerURL"] = valueJSON(record.customerURL);
    object["productName"] = valueJSON(record.productName);
    object["quantity"] = valueJSON(record.quantity);
    object["endDate"] = valueJSON(record.endDate);
    return object;
}

} // namespace tools
