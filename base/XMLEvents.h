#pragma once

#include <optional>
#include <string_view>

namespace base {

/// A view of one start element's attributes, valid only during the event.
class XMLAttributes {
  public:
    /// @param pairs alternate names and values, with a null pointer at the end.
    explicit XMLAttributes(const char* const* pairs) : pairs_(pairs) {}

    /// Returns the value of the attribute `name` in UTF-8, or std::nullopt if it is missing.
    [[nodiscard]] std::optional<std::string_view> value(std::string_view name) const;

  private:
    const char* const* pairs_;
};

/// A receiver of the events of one parse, on the thread that parses. All texts are UTF-8 and valid
/// only during the call. If a handler throws, the parse stops and the exception leaves parseXML().
class XMLEventDelegate {
  public:
    XMLEventDelegate() = default;
    XMLEventDelegate(const XMLEventDelegate&) = delete;
    XMLEventDelegate& operator=(const XMLEventDelegate&) = delete;

    /// Handles the start of an element. The name is unchanged and includes a prefix.
    virtual void didStartElement(std::string_view elementName, const XMLAttributes& attributes) = 0;
    /// Handles the end of an element.
    virtual void didEndElement(std::string_view elementName) = 0;
    /// Handles one piece of character data. An element's text may have several pieces. The content
    /// of CDATA sections is omitted.
    virtual void foundCharacters(std::string_view characters) = 0;
    /// Handles a parse error: the document is malformed or exceeds a limit. Always the last event.
    virtual void parseErrorOccurred() = 0;

  protected:
    ~XMLEventDelegate() = default;
};

/// The deepest nesting of elements. A deeper one is a parse error.
inline constexpr int kDeepestNesting = 256;

/// Reads one XML document as a series of events. Ignores namespaces, and never opens files or URLs
/// that the document names.
///
/// The time is linear in the size of the document. The memory contains, in addition to the
/// document, its names and declarations and a copy of the part that expat gets at once: the whole
/// document, or one of 32 parts if the document exceeds 16 MiB.
///
/// Declared entities are expanded under expat's amplification protection. A parse error occurs if
/// the input and its expansion together exceed both 256 KiB and four times the input, or if the
/// document declares more than 64 attributes.
///
/// Encodings: UTF-8 (also as "utf8"), UTF-16, ISO-8859-1 to -16 (without -12), US-ASCII,
/// windows-1250 to -1258, KOI8-R and KOI8-U, in any letter case. The declaration of another
/// encoding is a parse error.
///
/// @param document the whole document.
/// @param delegate gets every event before the function returns. Its exceptions are rethrown.
/// @return true if the document was read to its end without an error.
bool parseXML(std::string_view document, XMLEventDelegate& delegate);

} // namespace base
