#include "tools/RecordJSON.h"

#include "base/Timestamp.h"

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
    return date ? ordered_json(base::timestampText(*date)) : ordered_json();
}

ordered_json valueJSON(const store::Number& number) {
    return number ? ordered_json(*number) : ordered_json();
}

template <class Record>
ordered_json valueJSON(const store::List<Record>& records) {
    if (!records) {
        return nullptr;
    }
    ordered_json array = ordered_json::array();
    for (const auto& record : *records) {
        array.push_back(recordJSON(*record));
    }
    return array;
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

ordered_json recordJSON(const store::FastSpringOrder& record) {
    ordered_json object;
    object["reference"] = valueJSON(record.reference);
    object["status"] = valueJSON(record.status);
    object["statusChangedDate"] = valueJSON(record.statusChangedDate);
    object["isTest"] = valueJSON(record.isTest);
    object["dueDate"] = valueJSON(record.dueDate);
    object["currency"] = valueJSON(record.currency);
    object["referrer"] = valueJSON(record.referrer);
    object["originIP"] = valueJSON(record.originIP);
    object["total"] = valueJSON(record.total);
    object["tax"] = valueJSON(record.tax);
    object["shipping"] = valueJSON(record.shipping);
    object["sourceName"] = valueJSON(record.sourceName);
    object["sourceKey"] = valueJSON(record.sourceKey);
    object["sourceCampaign"] = valueJSON(record.sourceCampaign);
    object["customerFirstName"] = valueJSON(record.customerFirstName);
    object["customerLastName"] = valueJSON(record.customerLastName);
    object["customerCompany"] = valueJSON(record.customerCompany);
    object["customerEmail"] = valueJSON(record.customerEmail);
    object["customerPhoneNumber"] = valueJSON(record.customerPhoneNumber);
    object["purchaserFirstName"] = valueJSON(record.purchaserFirstName);
    object["purchaserLastName"] = valueJSON(record.purchaserLastName);
    object["purchaserCompany"] = valueJSON(record.purchaserCompany);
    object["purchaserEmail"] = valueJSON(record.purchaserEmail);
    object["purchaserPhoneNumber"] = valueJSON(record.purchaserPhoneNumber);
    object["addressLine1"] = valueJSON(record.addressLine1);
    object["addressLine2"] = valueJSON(record.addressLine2);
    object["city"] = valueJSON(record.city);
    object["region"] = valueJSON(record.region);
    object["regionCustom"] = valueJSON(record.regionCustom);
    object["postalCode"] = valueJSON(record.postalCode);
    object["country"] = valueJSON(record.country);
    object["orderItems"] = valueJSON(record.orderItems);
    object["payments"] = valueJSON(record.payments);
    return object;
}

ordered_json recordJSON(const store::FastSpringOrderItem& record) {
    ordered_json object;
    object["productDisplay"] = valueJSON(record.productDisplay);
    object["productName"] = valueJSON(record.productName);
    object["quantity"] = valueJSON(record.quantity);
    object["subscriptionReference"] = valueJSON(record.subscriptionReference);
    return object;
}

ordered_json recordJSON(const store::FastSpringPaymentItem& record) {
    ordered_json object;
    object["status"] = valueJSON(record.status);
    object["statusChangedDate"] = valueJSON(record.statusChangedDate);
    object["methodType"] = valueJSON(record.methodType);
    object["declinedReason"] = valueJSON(record.declinedReason);
    object["currency"] = valueJSON(record.currency);
    object["total"] = valueJSON(record.total);
    return object;
}

} // namespace tools
