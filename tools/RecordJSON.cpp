#include "tools/RecordJSON.h"

#include "base/Timestamp.h"

#include <memory>
#include <optional>

// How the values of records become JSON.
namespace nlohmann {

template <class Value>
struct adl_serializer<std::optional<Value>> {
    static void to_json(ordered_json& json, const std::optional<Value>& value) {
        json = value ? ordered_json(*value) : ordered_json();
    }
};

template <class Record>
struct adl_serializer<std::shared_ptr<Record>> {
    static void to_json(ordered_json& json, const std::shared_ptr<Record>& record) {
        json = *record;
    }
};

template <>
struct adl_serializer<std::chrono::sys_seconds> {
    static void to_json(ordered_json& json, const std::chrono::sys_seconds& moment) {
        json = base::timestampText(moment);
    }
};

} // namespace nlohmann

namespace store {

// Like NLOHMANN_DEFINE_TYPE_NON_INTRUSIVE, which lacks support for ordered objects.
#define RECORD_TO_JSON(Record, ...)                                                                \
    static void to_json(nlohmann::ordered_json& nlohmann_json_j, const Record& nlohmann_json_t) {  \
        NLOHMANN_JSON_EXPAND(NLOHMANN_JSON_PASTE(NLOHMANN_JSON_TO, __VA_ARGS__))                   \
    }

RECORD_TO_JSON(FastSpringSubscription, reference, status, statusChangedDate, statusReason,
               isCancelable, isTest, referrer, sourceName, sourceKey, sourceCampaign,
               customerFirstName, customerLastName, customerCompany, customerEmail,
               customerPhoneNumber, customerURL, productName, quantity, endDate)
RECORD_TO_JSON(FastSpringOrderItem, productDisplay, productName, quantity, subscriptionReference)
RECORD_TO_JSON(FastSpringPaymentItem, status, statusChangedDate, methodType, declinedReason,
               currency, total)
RECORD_TO_JSON(FastSpringOrder, reference, status, statusChangedDate, isTest, dueDate, currency,
               referrer, originIP, total, tax, shipping, sourceName, sourceKey, sourceCampaign,
               customerFirstName, customerLastName, customerCompany, customerEmail,
               customerPhoneNumber, purchaserFirstName, purchaserLastName, purchaserCompany,
               purchaserEmail, purchaserPhoneNumber, addressLine1, addressLine2, city, region,
               regionCustom, postalCode, country, orderItems, payments)

} // namespace store

namespace tools {

nlohmann::ordered_json recordJSON(const store::FastSpringSubscription& record) {
    return record;
}

nlohmann::ordered_json recordJSON(const store::FastSpringOrder& record) {
    return record;
}

} // namespace tools
