#include "store/FastSpringOrderParser.h"

#include "store/ElementTable.h"

#include <array>
#include <stdexcept>

namespace store {
namespace {

using Order = FastSpringOrder;
using Item = FastSpringOrderItem;
using Payment = FastSpringPaymentItem;

constexpr Element<Order> kOrderElements[] = {
    {"tax", &Order::tax},
    {"city", &Order::city},
    {"test", &Order::isTest},
    {"total", &Order::total},
    {"region", &Order::region},
    {"status", &Order::status},
    {"country", &Order::country},
    {"currency", &Order::currency},
    {"originip", &Order::originIP},
    {"shipping", &Order::shipping},
    {"reference", &Order::reference},
    {"postalcode", &Order::postalCode},
    {"addressline1", &Order::addressLine1},
    {"addressline2", &Order::addressLine2},
    {"statuschanged", &Order::statusChangedDate},
};
static_assert(isElementTable<Order>(kOrderElements));

constexpr Element<Order> kCustomerElements[] = {
    {"email", &Order::customerEmail}, //
    {"company", &Order::customerCompany},     {"lastname", &Order::customerLastName},
    {"firstname", &Order::customerFirstName}, {"phonenumber", &Order::customerPhoneNumber},
};
static_assert(isElementTable<Order>(kCustomerElements));

constexpr Element<Order> kPurchaserElements[] = {
    {"email", &Order::purchaserEmail}, //
    {"company", &Order::purchaserCompany},     {"lastname", &Order::purchaserLastName},
    {"firstname", &Order::purchaserFirstName}, {"phonenumber", &Order::purchaserPhoneNumber},
};
static_assert(isElementTable<Order>(kPurchaserElements));

constexpr Element<Item> kItemElements[] = {
    {"quantity", &Item::quantity},
    {"productname", &Item::productName},
    {"productdisplay", &Item::productDisplay},
    {"subscriptionreference", &Item::subscriptionReference},
};
static_assert(isElementTable<Item>(kItemElements));

constexpr Element<Payment> kPaymentElements[] = {
    {"total", &Payment::total},
    {"status", &Payment::status},
    {"currency", &Payment::currency},
    {"methodtype", &Payment::methodType},
    {"statuschanged", &Payment::statusChangedDate},
    {"declinedreason", &Payment::declinedReason},
};
static_assert(isElementTable<Payment>(kPaymentElements));

/// Appends the current record to a list that exists.
template <class Record>
void append(List<Record>* list, const std::shared_ptr<Record>& record) {
    if (list == nullptr || !*list) {
        return;
    }
    if (!record) {
        throw std::invalid_argument("a container ends without a record to append");
    }
    (*list)->push_back(record);
}

} // namespace

std::shared_ptr<FastSpringOrder> FastSpringOrderParser::parseOrder() {
    isPurchaser_ = false;
    isPayments_ = false;
    parse();
    return order;
}

bool FastSpringOrderParser::startContainer(std::string_view elementName) {
    if (elementName == "order") {
        order = std::make_shared<Order>();
    } else if (elementName == "customer" || elementName == "purchaser") {
        isPurchaser_ = elementName == "purchaser";
    } else if (elementName == "orderitems") {
        if (order) {
            order->orderItems.emplace();
        }
    } else if (elementName == "orderitem") {
        orderItem = std::make_shared<Item>();
    } else if (elementName == "payments") {
        if (order) {
            order->payments.emplace();
        }
        isPayments_ = true;
    } else if (elementName == "payment") {
        payment = std::make_shared<Payment>();
    } else {
        return false;
    }
    return true;
}

void FastSpringOrderParser::endElement(std::string_view elementName, ElementText& text) {
    if (elementName == "orderitems") {
        append(order ? &order->orderItems : nullptr, orderItem);
        orderItem.reset();
    } else if (elementName == "payments") {
        append(order ? &order->payments : nullptr, payment);
        // The line item and not the payment: a further container takes that payment up again.
        orderItem.reset();
        isPayments_ = false;
    } else {
        storeField(elementName, text);
    }
}

/// Looks the element up in the tables of the present context, the narrowest first.
bool FastSpringOrderParser::storeField(std::string_view elementName, ElementText& text) {
    const std::span<const Element<Order>> contact =
        isPurchaser_ ? std::span(kPurchaserElements) : std::span(kCustomerElements);
    return (isPayments_ && storeElement(kPaymentElements, elementName, text, payment.get())) ||
           storeElement(contact, elementName, text, order.get()) ||
           storeElement(kItemElements, elementName, text, orderItem.get()) ||
           storeElement(kOrderElements, elementName, text, order.get());
}

} // namespace store
