#include "base/XMLEvents.h"

#include "tests/support/Test.h"

#include <sstream>

namespace base {
namespace {

using test::repeated;

/// Records the events as a text: "<a" for a start, "a>" for an end, "!" for the error, and texts.
class Recorder final : public XMLEventDelegate {
  public:
    void didStartElement(std::string_view name, const XMLAttributes& attributes) override {
        events += "<" + std::string(name);
        if (const auto value = attributes.value("c")) {
            events += "*" + std::string(*value);
        }
        if (failAt == name) {
            throw std::out_of_range("as told");
        }
    }
    void didEndElement(std::string_view name) override { events += std::string(name) + ">"; }
    void foundCharacters(std::string_view text) override { events += text; }
    void parseErrorOccurred() override { events += "!"; }

    std::string events;
    std::string failAt;
};

std::string eventsOf(std::string_view document) {
    Recorder recorder;
    const bool whole = parseXML(document, recorder);
    EXPECT_EQ(whole, recorder.events.find('!') == std::string::npos) << document.substr(0, 200);
    return recorder.events;
}

TEST(XMLEvents, DeliverWhatADocumentHoldsAndNothingElseThatItNames) {
    const test::TestHome home;
    const auto secret = (test::TestHome::path() / "secret").native();
    test::writeFile(secret, "<!ENTITY e 'secret'>");
    const std::pair<std::string, std::string> rows[] = {
        {"", "!"},
        {"no document", "!"},
        {"<a b='1' c='&lt;2'><x:D d=''>1&amp;2</x:D></a>", "<a*<2<x:D1&2x:D>a>"},
        {"<a>1<![CDATA[hidden]]>2</a>", "<a12a>"},
        {"<a>1<b>2</a>", "<a1<b2!"},
        {"<a>1", "<a1!"},
        {"<a/><b/>", "<aa>!"},
        {"<!DOCTYPE a [<!ENTITY e 'own'>]><a>&e;</a>", "<aowna>"},
        {"<a>&undefined;</a>", "<a!"},
        {"<!DOCTYPE a [<!ENTITY e SYSTEM '" + secret + "'>]><a>1&e;2</a>", "<a12a>"},
        {"<!DOCTYPE a SYSTEM '" + secret + "'><a>&e;</a>", "<aa>"},
        {"<!DOCTYPE a [<!ENTITY % p SYSTEM '" + secret + "'>%p;]><a>&e;</a>", "<aa>"},
        {"<a>\xff</a>", "<a!"},
        {std::string("\xff\xfe<\0a\0/\0>\0", 10), "<aa>"},
    };
    for (const auto& [document, events] : rows) {
        EXPECT_EQ(eventsOf(document), events) << document;
    }
}

TEST(XMLEvents, ReadsTheEncodingsOfAFixedListOnly) {
    const std::tuple<const char*, const char*, const char*> rows[] = {
        {"ISO-8859-1", "\xe9", "\u00e9"},
        {"windows-1255", "\xe0\xc7 \xf9\xd1", "\u05d0\u05b7 \u05e9\u05c1"},
        {"Windows-1258", "o\xec", "o\u0301"},
        {"KOI8-R", "\xd0\xd2", "\u043f\u0440"},
        {"utf8", "\u00e9\U0001f600", "\u00e9\U0001f600"},
        {"UTF8", "\xed\xa0\x80", nullptr}, // a surrogate
        {"US-ASCII", "\xe9", nullptr},
        {"UTF-7", "", nullptr},
        {"CP1252", "", nullptr},
    };
    for (const auto& [encoding, text, expected] : rows) {
        const std::string document =
            std::string("<?xml version='1.0' encoding='") + encoding + "'?><a>" + text + "</a>";
        const auto whole = "<a" + std::string(expected != nullptr ? expected : "") + "a>";
        const std::string start = *text == '\0' ? "!" : "<a!";
        EXPECT_EQ(eventsOf(document), expected != nullptr ? whole : start) << encoding;
    }
    std::istringstream names(
        "ISO-8859-2 ISO-8859-3 ISO-8859-4 ISO-8859-5 ISO-8859-6 ISO-8859-7 "
        "ISO-8859-8 ISO-8859-9 ISO-8859-10 ISO-8859-11 ISO-8859-13 ISO-8859-14 "
        "ISO-8859-15 ISO-8859-16 windows-1250 windows-1251 windows-1252 "
        "windows-1253 windows-1254 windows-1256 windows-1257 KOI8-U");
    for (std::string name; names >> name;) {
        EXPECT_EQ(eventsOf("<?xml version='1.0' encoding='" + name + "'?><a/>"), "<aa>") << name;
    }
}

TEST(XMLEvents, ReadsALargeDocumentInPartsWithTheSameEvents) {
    constexpr int kCount = 1200000;
    const std::string document = "<a>" + repeated("<b c='d'>\xc3\xa9</b>", kCount);
    const std::string events = "<a" + repeated("<b*d\u00e9b>", kCount);
    EXPECT_TRUE(eventsOf(document + "</a>") == events + "a>");
    EXPECT_TRUE(eventsOf(document) == events + "!");
    const std::string longTag = "<a b='" + std::string(20U << 20U, 'x') + "' c='1'/>";
    EXPECT_EQ(eventsOf(longTag), "<a*1a>"); // spans the parts
}

TEST(XMLEvents, StopAtTheDeepestNestingAndTheMostDeclaredAttributes) {
    EXPECT_EQ(eventsOf(repeated("<a>", 256) + repeated("</a>", 256)).find('!'), std::string::npos);
    EXPECT_EQ(eventsOf(repeated("<a>", 200000)), repeated("<a", 256) + "!");
    const std::string declared = repeated("<!ATTLIST b c CDATA ''>", 64);
    EXPECT_EQ(eventsOf("<!DOCTYPE a [" + declared + "]><a/>"), "<aa>");
    EXPECT_EQ(eventsOf("<!DOCTYPE a [" + declared + "<!ATTLIST d e CDATA ''>]><a/>"), "!");
}

TEST(XMLEvents, PassesTheDelegatesFailureOnAndStops) {
    for (const char* document : {"<a><b/><c/></a>", "<a><b>x</b></a>", "<a><b/>", "<b/>"}) {
        Recorder recorder;
        recorder.failAt = "b";
        EXPECT_THROW(parseXML(document, recorder), std::out_of_range) << document;
        EXPECT_EQ(recorder.events.substr(recorder.events.size() - 2), "<b") << document;
    }
}

} // namespace
} // namespace base
