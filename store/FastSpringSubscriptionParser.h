#pragma once

#include "store/FastSpringRootParser.h"
#include "store/FastSpringSubscription.h"

#include <memory>
#include <string_view>

namespace store {

/// Turns one answer of the store service into a subscription record.
///
/// A field element is known by its name alone, wherever it stands; of two the later counts, and one
/// before the first "subscription" start is dropped. Every "subscription" start begins a new record
/// in place of the one before.
class FastSpringSubscriptionParser : public FastSpringRootParser {
  public:
    using FastSpringRootParser::FastSpringRootParser;

    /// Parses the answer, once, and gives the record as far as it was filled, or none when no
    /// "subscription" element started. An answer that is cut off or not well-formed gives what was
    /// read before.
    ///
    /// @throws std::out_of_range for a date text without "Z" (see fromServerDate()).
    [[nodiscard]] std::shared_ptr<FastSpringSubscription> parseSubscription();

    /// The record being filled; shared with the caller of parseSubscription().
    std::shared_ptr<FastSpringSubscription> subscription;

  private:
    bool startContainer(std::string_view elementName) override;
    void endElement(std::string_view elementName, ElementText& text) override;
};

} // namespace store
