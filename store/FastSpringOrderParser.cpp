#include "store/FastSpringOrderParser.h"

#include "store/ElementTable.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

namespace store {
namespace {

using Order = FastSpringOrder;
using Item = FastSpringOrderItem;
using Payment = FastSpringPaymentItem;

constexpr ElementTable kOrderElements{kFields<Order>};
constexpr ElementTable kCustomerElements{kFields<Order>, "customer/"};
constexpr ElementTable kPurchaserElements{kFields<Order>, "purchaser/"};
constexpr ElementTable kItemElements{kFields<Item>};
constexpr ElementTable kPaymentElements{kFields<Payment>};

/// Appends the current record to a list, if the list exists.
/// @throws std::invalid_argument if the record is null.
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

using Parser = FastSpringOrderParser;

constexpr Parser::Container Parser::kContainers[] = {
    {"order", [](Parser& parser) { parser.order = std::make_shared<Order>(); }},
    {"customer", [](Parser& parser) { parser.isPurchaser_ = false; }},
    {"purchaser", [](Parser& parser) { parser.isPurchaser_ = true; }},
    {"orderitems",
     [](Parser& parser) {
         if (parser.order) {
             parser.order->orderItems.emplace();
         }
     },
     [](Parser& parser) {
         append(parser.order ? &parser.order->orderItems : nullptr, parser.orderItem);
         parser.orderItem.reset();
     }},
    {"orderitem", [](Parser& parser) { parser.orderItem = std::make_shared<Item>(); }},
    {"payments",
     [](Parser& parser) {
         if (parser.order) {
             parser.order->payments.emplace();
         }
         parser.isPayments_ = true;
     },
     [](Parser& parser) {
         append(parser.order ? &parser.order->payments : nullptr, parser.payment);
         // Reset the line item instead of the payment. A further container continues the payment.
         parser.orderItem.reset();
         parser.isPayments_ = false;
     }},
    {"payment", [](Parser& parser) { parser.payment = std::make_shared<Payment>(); }},
};

const Parser::Container* Parser::containerNamed(std::string_view name) {
    const auto* const found =
        std::find_if(std::begin(kContainers), std::end(kContainers),
                     [=](const Container& container) { return container.name == name; });
    return found != std::end(kContainers) ? found : nullptr;
}

bool FastSpringOrderParser::startContainer(std::string_view elementName) {
    const Container* const container = containerNamed(elementName);
    if (container != nullptr) {
        container->start(*this);
    }
    return container != nullptr;
}

void FastSpringOrderParser::endElement(std::string_view elementName, ElementText& text) {
    const Container* const container = containerNamed(elementName);
    if (container == nullptr) {
        storeField(elementName, text);
    } else if (container->end != nullptr) {
        container->end(*this);
    }
}

/// Looks the element up in the tables of the current context, from the narrowest to the widest.
void FastSpringOrderParser::storeField(std::string_view elementName, ElementText& text) {
    const auto& contacts = isPurchaser_ ? kPurchaserElements : kCustomerElements;
    static_cast<void>(
        (isPayments_ && storeElement(*this, kPaymentElements, elementName, text, payment.get())) ||
        storeElement(*this, contacts, elementName, text, order.get()) ||
        storeElement(*this, kItemElements, elementName, text, orderItem.get()) ||
        storeElement(*this, kOrderElements, elementName, text, order.get()));
}

} // namespace store
