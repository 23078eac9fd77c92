#pragma once

#include <string_view>

namespace base {

/// The attributes of one start element: a view that is valid during the event only. Nothing of them
/// is copied.
class XMLAttributes {
  public:
    /// @param pairs names and values in turn, ended by a null pointer.
    explicit XMLAttributes(const char* const* pairs) : pairs_(pairs) {}

    [[nodiscard]] bool empty() const { return *pairs_ == nullptr; }

  private:
    const char* const* pairs_;
};

/// Receives the events of one parse, on the thread that parses. All texts are UTF-8 and valid
/// during the call only. A handler may throw: the parse then stops and the exception leaves
/// XMLEventParser::parse().
class XMLEventParserDelegate {
  public:
    XMLEventParserDelegate() = default;
    XMLEventParserDelegate(const XMLEventParserDelegate&) = delete;
    XMLEventParserDelegate& operator=(const XMLEventParserDelegate&) = delete;

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
    ~XMLEventParserDelegate() = default;
};

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
class XMLEventParser {
  public:
    /// The deepest nesting of elements that is not a parse error.
    static constexpr int kDeepestNesting = 256;

    /// @param document the whole document; it must outlive the parser.
    explicit XMLEventParser(std::string_view document) : document_(document) {}

    /// Parses the document once, from its start, delivering every event to `delegate` before it
    /// returns. Rethrows what the delegate throws.
    ///
    /// @return whether the document was read to its end without an error.
    bool parse(XMLEventParserDelegate& delegate) const;

  private:
    std::string_view document_;
};

} // namespace base
