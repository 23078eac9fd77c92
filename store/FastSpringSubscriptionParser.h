#pragma once

#include "store/FastSpringRootParser.h"
#include "store/FastSpringSubscription.h"

#include <memory>
#include <string_view>

namespace store {

/// A parser for an answer with a subscription.
///
/// The name alone identifies a field's element, at any depth. The later of two elements counts, and
/// elements before the first "subscription" start are ignored. Every "subscription" start replaces
/// the record by a new one.
class FastSpringSubscriptionParser : public FastSpringRootParser {
  public:
    using FastSpringRootParser::FastSpringRootParser;

    /// Parses the answer. Call it once.
    /// @return the record, or null if the answer lacks a "subscription" start. The record of a
    /// malformed or truncated answer contains only the part before the error.
    /// @throws std::out_of_range for a date without "Z" (see fromServerDate()).
    std::shared_ptr<FastSpringSubscription> parseSubscription();

    /// The current record, shared with the caller of parseSubscription().
    std::shared_ptr<FastSpringSubscription> subscription;

  private:
    bool startContainer(std::string_view elementName) override;
    void endElement(std::string_view elementName, ElementText& text) override;
};

} // namespace store
