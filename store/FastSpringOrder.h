#pragma once

#include "store/FastSpringItem.h"
#include "store/Field.h"
#include "store/FieldTypes.h"

#include <array>

namespace store {

/// One line item of an order.
struct FastSpringOrderItem : FastSpringItem {
    Text productDisplay;        ///< the product's display name
    Text productName;           ///< the product's name
    Number quantity;            ///< number of units
    Text subscriptionReference; ///< reference of the subscription that the line item belongs to
};

/// One payment of an order.
struct FastSpringPaymentItem : FastSpringItem {
    Text status;            ///< the payment's status, as sent
    Date statusChangedDate; ///< when that status last changed
    Text methodType;        ///< kind of payment method
    Text declinedReason;    ///< reason given for a declined payment
    Text currency;          ///< currency of the amount
    Number total;           ///< amount of the payment, in whole units
};

/// One order, with every field as the store service sent it, neither validated nor normalized.
/// Amounts are in whole units. A negative amount is stored as 2^64 plus the amount. Entries of
/// lists are never null. The order contains one postal address, not one per person.
struct FastSpringOrder : FastSpringItem {
    Text reference;                       ///< the order's reference at the store service
    Text status;                          ///< its status, which this client does not interpret
    Date statusChangedDate;               ///< when the status last changed
    bool isTest = false;                  ///< whether the store service marks it as a test
    Date dueDate;                         ///< due date (for callers, always absent)
    Text currency;                        ///< currency of the amounts
    Text referrer;                        ///< referrer recorded for the sale (for callers)
    Text originIP;                        ///< network address the order was placed from
    Number total;                         ///< order total
    Number tax;                           ///< tax amount
    Number shipping;                      ///< shipping amount
    Text sourceName;                      ///< source name recorded for the sale (for callers)
    Text sourceKey;                       ///< source key recorded for the sale (for callers)
    Text sourceCampaign;                  ///< source campaign of the sale (for callers)
    Text customerFirstName;               ///< customer's first name
    Text customerLastName;                ///< customer's last name
    Text customerCompany;                 ///< customer's company
    Text customerEmail;                   ///< customer's e-mail address
    Text customerPhoneNumber;             ///< customer's phone number
    Text purchaserFirstName;              ///< purchaser's first name
    Text purchaserLastName;               ///< purchaser's last name
    Text purchaserCompany;                ///< purchaser's company
    Text purchaserEmail;                  ///< purchaser's e-mail address
    Text purchaserPhoneNumber;            ///< purchaser's phone number
    Text addressLine1;                    ///< first address line
    Text addressLine2;                    ///< second address line
    Text city;                            ///< city
    Text region;                          ///< region or state
    Text regionCustom;                    ///< free-form region (for callers, always absent)
    Text postalCode;                      ///< postal code
    Text country;                         ///< country
    List<FastSpringOrderItem> orderItems; ///< the line items, absent without their container
    List<FastSpringPaymentItem> payments; ///< the payments, absent without their container
};

template <>
inline constexpr auto kFields<FastSpringOrderItem> = std::to_array<Field<FastSpringOrderItem>>({
    {"productdisplay", "productDisplay", &FastSpringOrderItem::productDisplay},
    {"productname", "productName", &FastSpringOrderItem::productName},
    {"quantity", "quantity", &FastSpringOrderItem::quantity},
    {"subscriptionreference", "subscriptionReference", &FastSpringOrderItem::subscriptionReference},
});

template <>
inline constexpr auto kFields<FastSpringPaymentItem> = std::to_array<Field<FastSpringPaymentItem>>({
    {"status", "status", &FastSpringPaymentItem::status},
    {"statuschanged", "statusChangedDate", &FastSpringPaymentItem::statusChangedDate},
    {"methodtype", "methodType", &FastSpringPaymentItem::methodType},
    {"declinedreason", "declinedReason", &FastSpringPaymentItem::declinedReason},
    {"currency", "currency", &FastSpringPaymentItem::currency},
    {"total", "total", &FastSpringPaymentItem::total},
});

using OrderField = Field<FastSpringOrder, List<FastSpringOrderItem> FastSpringOrder::*,
                         List<FastSpringPaymentItem> FastSpringOrder::*>;
template <>
inline constexpr auto kFields<FastSpringOrder> = std::to_array<OrderField>({
    {"reference", "reference", &FastSpringOrder::reference},
    {"status", "status", &FastSpringOrder::status},
    {"statuschanged", "statusChangedDate", &FastSpringOrder::statusChangedDate},
    {"test", "isTest", &FastSpringOrder::isTest},
    {"", "dueDate", &FastSpringOrder::dueDate},
    {"currency", "currency", &FastSpringOrder::currency},
    {"", "referrer", &FastSpringOrder::referrer},
    {"originip", "originIP", &FastSpringOrder::originIP},
    {"total", "total", &FastSpringOrder::total},
    {"tax", "tax", &FastSpringOrder::tax},
    {"shipping", "shipping", &FastSpringOrder::shipping},
    {"", "sourceName", &FastSpringOrder::sourceName},
    {"", "sourceKey", &FastSpringOrder::sourceKey},
    {"", "sourceCampaign", &FastSpringOrder::sourceCampaign},
    {"customer/firstname", "customerFirstName", &FastSpringOrder::customerFirstName},
    {"customer/lastname", "customerLastName", &FastSpringOrder::customerLastName},
    {"customer/company", "customerCompany", &FastSpringOrder::customerCompany},
    {"customer/email", "customerEmail", &FastSpringOrder::customerEmail},
    {"customer/phonenumber", "customerPhoneNumber", &FastSpringOrder::customerPhoneNumber},
    {"purchaser/firstname", "purchaserFirstName", &FastSpringOrder::purchaserFirstName},
    {"purchaser/lastname", "purchaserLastName", &FastSpringOrder::purchaserLastName},
    {"purchaser/company", "purchaserCompany", &FastSpringOrder::purchaserCompany},
    {"purchaser/email", "purchaserEmail", &FastSpringOrder::purchaserEmail},
    {"purchaser/phonenumber", "purchaserPhoneNumber", &FastSpringOrder::purchaserPhoneNumber},
    {"addressline1", "addressLine1", &FastSpringOrder::addressLine1},
    {"addressline2", "addressLine2", &FastSpringOrder::addressLine2},
    {"city", "city", &FastSpringOrder::city},
    {"region", "region", &FastSpringOrder::region},
    {"", "regionCustom", &FastSpringOrder::regionCustom},
    {"postalcode", "postalCode", &FastSpringOrder::postalCode},
    {"country", "country", &FastSpringOrder::country},
    {"", "orderItems", &FastSpringOrder::orderItems},
    {"", "payments", &FastSpringOrder::payments},
});

} // namespace store
