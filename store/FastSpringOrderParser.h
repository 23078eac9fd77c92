#pragma once

#include "store/FastSpringOrder.h"
#include "store/FastSpringRootParser.h"

#include <memory>
#include <string_view>

namespace store {

/// A parser for an answer with an order, its line items and its payments.
///
/// Only the end of a container ("orderitems", "payments") appends to its list, and it appends only
/// the current record. Of several line items or payments in one container, the last is kept.
/// Contact elements fill the purchaser from a "purchaser" start to the next "customer" start.
class FastSpringOrderParser : public FastSpringRootParser {
  public:
    using FastSpringRootParser::FastSpringRootParser;

    /// Parses the answer. Call it once.
    /// @return the order, or null if the answer lacks an "order" start. The order of a malformed or
    /// truncated answer contains only the part before the error.
    /// @throws std::out_of_range for a date without "Z" (see fromServerDate()).
    /// @throws std::invalid_argument if a container of the order ends without a current record.
    std::shared_ptr<FastSpringOrder> parseOrder();

    std::shared_ptr<FastSpringOrder> order;         ///< shared with the caller of parseOrder()
    std::shared_ptr<FastSpringOrderItem> orderItem; ///< the current line item
    std::shared_ptr<FastSpringPaymentItem> payment; ///< the current payment

  private:
    bool startContainer(std::string_view elementName) override;
    void endElement(std::string_view elementName, ElementText& text) override;
    void storeField(std::string_view elementName, ElementText& text);

    /// An element with children, and the actions of its start and of its end, which can be null.
    struct Container {
        std::string_view name;
        void (*start)(FastSpringOrderParser& parser);
        void (*end)(FastSpringOrderParser& parser) = nullptr;
    };
    static const Container kContainers[];
    static const Container* containerNamed(std::string_view name);

    bool isPurchaser_ = false;
    bool isPayments_ = false;
};

} // namespace store
