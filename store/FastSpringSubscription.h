#pragma once

#include "store/FastSpringItem.h"
#include "store/Field.h"
#include "store/FieldTypes.h"

#include <array>

namespace store {

/// One subscription, with every field as the store service sent it, neither validated nor
/// normalized. A field without an element in the answer is absent, a flag without one is false.
struct FastSpringSubscription : FastSpringItem {
    Text reference;            ///< the subscription's reference at the store service
    Text status;               ///< its status, which this client does not interpret
    Date statusChangedDate;    ///< when the status last changed
    Text statusReason;         ///< the reason sent with the status
    bool isCancelable = false; ///< whether the store service allows canceling it
    bool isTest = false;       ///< whether the store service marks it as a test
    Text referrer;             ///< referrer recorded for the sale
    Text sourceName;           ///< source name recorded for the sale
    Text sourceKey;            ///< source key recorded for the sale
    Text sourceCampaign;       ///< source campaign recorded for the sale
    Text customerFirstName;    ///< customer's first name
    Text customerLastName;     ///< customer's last name
    Text customerCompany;      ///< customer's company
    Text customerEmail;        ///< customer's e-mail address
    Text customerPhoneNumber;  ///< customer's phone number
    Text customerURL;          ///< untrusted address of the customer's account page
    Text productName;          ///< name of the subscribed product
    Number quantity;           ///< number of units (a negative number is stored as 2^64 plus it)
    Date endDate;              ///< when the subscription ends
};

template <>
inline constexpr auto
    kFields<FastSpringSubscription> = std::to_array<Field<FastSpringSubscription>>({
        {"reference", "reference", &FastSpringSubscription::reference},
        {"status", "status", &FastSpringSubscription::status},
        {"statuschanged", "statusChangedDate", &FastSpringSubscription::statusChangedDate},
        {"statusreason", "statusReason", &FastSpringSubscription::statusReason},
        {"cancelable", "isCancelable", &FastSpringSubscription::isCancelable},
        {"test", "isTest", &FastSpringSubscription::isTest},
        {"referrer", "referrer", &FastSpringSubscription::referrer},
        {"sourcename", "sourceName", &FastSpringSubscription::sourceName},
        {"sourcekey", "sourceKey", &FastSpringSubscription::sourceKey},
        {"sourcecampaign", "sourceCampaign", &FastSpringSubscription::sourceCampaign},
        {"firstname", "customerFirstName", &FastSpringSubscription::customerFirstName},
        {"lastname", "customerLastName", &FastSpringSubscription::customerLastName},
        {"company", "customerCompany", &FastSpringSubscription::customerCompany},
        {"email", "customerEmail", &FastSpringSubscription::customerEmail},
        {"phonenumber", "customerPhoneNumber", &FastSpringSubscription::customerPhoneNumber},
        {"customerurl", "customerURL", &FastSpringSubscription::customerURL},
        {"productname", "productName", &FastSpringSubscription::productName},
        {"quantity", "quantity", &FastSpringSubscription::quantity},
        {"end", "endDate", &FastSpringSubscription::endDate},
    });

} // namespace store
