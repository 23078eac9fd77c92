#pragma once

#include "store/FastSpringOrder.h"
#include "store/FastSpringRootParser.h"

#include <memory>
#include <string_view>

namespace store {

/// Turns one answer of the store service into an order with its line items and payments.
///
/// Only the end of a container ("orderitems", "payments") appends to its list, and only the record
/// that is current then, so of several line items or payments in one container the last is kept.
/// Contact elements fill the purchaser from a "purchaser" start to the next "customer" start.
class FastSpringOrderParser : public FastSpringRootParser {
  public:
    using FastSpringRootParser::FastSpringRootParser;

    /// Parses the answer, once, and gives the order as far as it was filled, or none when no
    /// "order" element started. An answer that is cut off or not well-formed gives what was read
    /// before.
    ///
    /// @throws std::out_of_range for a date text without "Z" (see fromServerDate()).
    /// @throws std::invalid_argument when a container of the order ends without a current record to
    /// append: a list never takes an empty entry.
    [[nodiscard]] std::shared_ptr<FastSpringOrder> parseOrder();

    std::shared_ptr<FastSpringOrder> order;         ///< shared with the caller of parseOrder()
    std::shared_ptr<FastSpringOrderItem> orderItem; ///< the current line item
    std::shared_ptr<FastSpringPaymentItem> payment; ///< the current payment

  private:
    bool startContainer(std::string_view elementName) override;
    void endElement(std::string_view elementName, ElementText& text) override;
    void storeField(std::string_view elementName, ElementText& text);

    /// What the start, and where it does something the end, of an element with children does.
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
