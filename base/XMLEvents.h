#pragma once

#include <optional>
#include <string_view>

namespace base {

/// The attributes of one start element: a view that is valid during the event only.
class XMLAttributes {
  public:
    /// @param pairs names and values in turn, ended by a null pointer.
    explicit XMLAttributes(const char* const* pairs) : pairs_(pairs) {}

    /// The value of the attribute `name`, in UTF-8; none when the element does not have it.
    [[nodiscard]] std::optional<std::string_view> value(std::string_view name) const;

  private:
    const char* const* pairs_;
};

/// Receives the events of one parse, on the thread that parses. All texts are UTF-8 and valid
/// during the call only. A handler may throw: the parse then stops and the exception leaves
/// parseXML().
class XMLEventDelegate {
  public:
    XMLEventDelegate() = default;
    XMLEventDelegate(const XMLEventDelegate&) = delete;
    XMLEventDelegate& operator=(const XMLEventDelegate&) = delete;

    /// An element starts. The name is as written, a prefix included.
    virtual void didStartElement(std::string_view elementName, const XMLAttributes& attributes) = 0;
    /// An element ends.
    virtual void didEndElement(std::string_view elementName) = 0;
    /// One piece of character data; the text of an element may come in several. The content of
    /// CDATA sections is not delivered.
    virtual void foundCharacters(std::string_view characters) = 0;
    /// The document is not well-formed, or goes beyond a limit. The last event of the parse.
    virtual void parseErrorOccurred() = 0;

  protected:
    ~XMLEventDelegate() = default;
};

/// The deepest nesting of elements that is not a parse error.
inline constexpr int kDeepestNesting = 256;

/// Reads one XML document as a series of events, without namespaces and without opening anything
/// that the document names. In time it is linear in the size of the document. In memory it holds,
/// beside the document, a copy of what it was given at once (all, or a thirty-second of a document
/// beyond 16 MiB) and the names and declarations that occur. Entities that the document declares
/// are expanded under expat's amplification protection: it is a parse error when what was read and
/// what was expanded come to more than 256 KiB and to more than four times what was read. So are
/// more than 64 declared attributes.
/// Encodings: UTF-8 (also as "utf8"), UTF-16, ISO-8859-1 to -16 (but for -12), US-ASCII,
/// windows-1250 to -1258, KOI8-R and KOI8-U, in any letter case; any other one is a parse error at
/// its declaration.
///
/// @param document the whole document.
/// @param delegate gets every event before the function returns; what it throws is rethrown.
/// @return whether the document was read to its end without an error.
bool parseXML(std::string_view document, XMLEventDelegate& delegate);

} // namespace base
