#pragma once

#include "base/XMLEvents.h"
#include "store/ElementText.h"
#include "store/FieldTypes.h"

#include <concepts>
#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace store {

/// The common base of the parsers for the store service's answers. It runs the event parser,
/// gathers the text of the current leaf element, sets the two error flags, and reads server dates.
///
/// A subclass defines the containers, and stores the texts of all other elements. A parser reads
/// one answer, once, on one thread.
class FastSpringRootParser : public base::XMLEventDelegate {
  public:
    /// @param data the complete answer, which must outlive the parser.
    explicit FastSpringRootParser(std::string_view data);
    /// A temporary text would not outlive the parser.
    template <std::same_as<std::string> Temporary>
    // NOLINTNEXTLINE(bugprone-forwarding-reference-overload): takes std::string only
    explicit FastSpringRootParser(Temporary&& data) = delete;
    virtual ~FastSpringRootParser() = default;

    /// Reads a date of the store service, like dateFromText(). All date elements use it.
    /// @throws std::out_of_range if the "Z" is missing.
    [[nodiscard]] virtual Date fromServerDate(std::string_view text) const;

    /// Returns true if the (lowercased) element is the root of an HTML page, and then sets
    /// isHTMLServerError.
    virtual bool checkForErrors(std::string_view elementName,
                                const base::XMLAttributes& attributes);
    /// Returns true if an HTML page was found, whose remaining end elements are then skipped.
    [[nodiscard]] virtual bool cleanUpAnyErrors(std::string_view elementName) const;

    /// Handle the events of the parse. Element names match in any letter case. A text is gathered
    /// from the last start of a leaf element to the first end after it, so an element with children
    /// has the text of its last child.
    void didStartElement(std::string_view elementName,
                         const base::XMLAttributes& attributes) override;
    void didEndElement(std::string_view elementName) override;
    void foundCharacters(std::string_view characters) override;
    void parseErrorOccurred() override;

    bool isHTMLServerError = false; ///< an element named "html" has started
    bool isParsingError = false;    ///< the answer is malformed or truncated
    std::optional<std::map<std::string, std::string>> elementAttributes; ///< for callers, never set
    std::optional<std::vector<std::string>> errors;                      ///< for callers, never set
    std::optional<std::map<std::string, std::string>> errorAttributes;   ///< for callers, never set

  protected:
    /// Delivers all events of the answer, which fill the subclass's record, even up to an error.
    void parse();

  private:
    /// Handles the start of a container and returns true. Returns false for any other element.
    virtual bool startContainer(std::string_view elementName) = 0;
    /// Handles the end of an element. Stores `text` if the element fills a property.
    virtual void endElement(std::string_view elementName, ElementText& text) = 0;

    std::string_view lowercaseName(std::string_view elementName);

    std::string_view data_;
    bool accumulatingParsedCharacterData_ = false;
    ElementText currentParsedCharacterData_;
    std::string elementName_; // lowercased, and a member to reuse its memory
};

} // namespace store
