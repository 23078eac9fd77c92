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

/// What all parsers of store service answers share: the event parser over one answer, the text of
/// the current leaf element, the two error flags, and the reading of server dates.
///
/// A subclass says which elements are containers and where the text of every other element goes.
/// A parser serves one answer, once, on one thread.
class FastSpringRootParser : public base::XMLEventDelegate {
  public:
    /// @param data the complete answer; it must outlive the parser.
    explicit FastSpringRootParser(std::string_view data);
    /// A temporary text would not outlive the parser.
    template <std::same_as<std::string> Temporary>
    explicit FastSpringRootParser(Temporary&& data) = delete;
    virtual ~FastSpringRootParser() = default;

    /// Reads a date text of the store service, as dateFromText(). Date elements go through it.
    /// @throws std::out_of_range when no "Z" is left to take.
    [[nodiscard]] virtual Date fromServerDate(std::string_view text) const;

    /// Returns true if the (lowercased) element is the root of an HTML page, and remembers that in
    /// isHTMLServerError.
    virtual bool checkForErrors(std::string_view elementName,
                                const base::XMLAttributes& attributes);
    /// Returns true if an HTML page was found. Clears nothing: the rest of such an answer is
    /// skipped.
    [[nodiscard]] virtual bool cleanUpAnyErrors(std::string_view elementName) const;

    /// The events of the parse. Element names are matched in any letter case. The text of an
    /// element is what was gathered from the last start of an element that is no container to the
    /// first end after it, so an element with children has the text of its last child.
    void didStartElement(std::string_view elementName,
                         const base::XMLAttributes& attributes) override;
    void didEndElement(std::string_view elementName) override;
    void foundCharacters(std::string_view characters) override;
    void parseErrorOccurred() override;

    bool isHTMLServerError = false; ///< an element named "html" has started
    bool isParsingError = false;    ///< the answer is not well-formed to its end
    std::optional<std::map<std::string, std::string>> elementAttributes; ///< for callers; not set
    std::optional<std::vector<std::string>> errors;                      ///< for callers; not set
    std::optional<std::map<std::string, std::string>> errorAttributes;   ///< for callers; not set

  protected:
    /// Delivers all events of the answer. What it holds is in the subclass's record afterwards,
    /// also when it broke off.
    void parse();

  private:
    /// Acts on the start of a container and gives true; gives false for any other element.
    virtual bool startContainer(std::string_view elementName) = 0;
    /// Stores `text` where the element that ends belongs, or does nothing.
    virtual void endElement(std::string_view elementName, ElementText& text) = 0;

    std::string_view lowercaseName(std::string_view elementName);

    std::string_view data_;
    bool accumulatingParsedCharacterData_ = false;
    ElementText currentParsedCharacterData_;
    std::string elementName_; // lowercased; a member so that its memory is used again
};

} // namespace store
