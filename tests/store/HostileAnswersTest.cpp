// Tests malicious answers: each must be read in little time and memory, and on a small stack.
#include "store/FastSpringOrderParser.h"

#include "store/FastSpringSubscriptionParser.h"
#include "tests/support/Test.h"

#include "tests/support/Measure.h"

#include <thread>

#include <pthread.h>

namespace store {
namespace {

using namespace std::chrono_literals;
using test::repeated;

constexpr std::size_t kMiB = std::size_t{1} << 20U; // the limit of a fetch
constexpr std::size_t kStack = (test::kIsSanitized ? 4096 : 512) * std::size_t{1024};

/// The parts of a document: `head` with the number 0, then `unit` many times, then `tail` with the
/// last number. See test::repeated().
struct Unit {
    const char* what;
    std::string head;
    std::string unit;
    std::string tail;

    [[nodiscard]] std::string document(std::size_t size) const {
        const std::size_t length = repeated(unit, 1, size / unit.size()).size();
        const std::size_t count = (size - head.size() - tail.size()) / length;
        return repeated(head, 1, 0) + repeated(unit, count) + repeated(tail, 1, count);
    }
};

/// Returns the shortest of several times in which a parser's function read a document.
template <class Parser, class Record>
std::chrono::nanoseconds leastTime(const std::string& document, Record (Parser::*parse)()) {
    auto least = std::chrono::nanoseconds::max();
    for (int round = 0; round < (test::kIsSanitized ? 1 : 5); ++round) {
        const auto start = test::threadTime();
        (Parser(document).*parse)();
        least = std::min(least, test::threadTime() - start);
    }
    return least;
}

/// Returns the time of the slower parser.
std::chrono::nanoseconds timeOf(const std::string& document) {
    return std::max(leastTime(document, &FastSpringSubscriptionParser::parseSubscription),
                    leastTime(document, &FastSpringOrderParser::parseOrder));
}

/// @return the time for 1 MiB of the unit.
std::chrono::nanoseconds expectLinear(const Unit& unit) {
    SCOPED_TRACE(unit.what);
    // Compare sizes for which the tables of names fit the processor's caches.
    const auto small = timeOf(unit.document(kMiB / 32));
    const auto large = timeOf(unit.document(kMiB / 8));
    const auto largest = timeOf(unit.document(kMiB));
    if (!test::kIsSanitized) {
        EXPECT_LT(large, 6 * small + 2ms);
        EXPECT_LT(largest, 500ms);
    }
    return largest;
}

TEST(HostileAnswers, TakeTimeInProportionToTheirSizeAndLittleMemory) {
    const auto nested = [](const std::string& tag) { return repeated("<" + tag + ">", 250); };
    const auto declaring = [](std::size_t attributes) {
        return "<!DOCTYPE x [<!ATTLIST x" + repeated(" x@ CDATA ''", attributes) + ">";
    };
    const std::string laughs = "<!ENTITY x@ '&x~;&x~;&x~;&x~;&x~;&x~;&x~;&x~;&x~;&x~;'>";
    const Unit units[] = {
        {"plus", "<end>", "+", "Z</end>"},
        {"point", "<end>", ".", "ZZ</end>"},
        {"kelvin sign in a flag", "<test>", "\xe2\x84\xaa", "</test>"},
        {"kelvin sign in a name", "<", "\xe2\x84\xaa", "/>"},
        {"attribute", "<x", " x@=''", "/>"},
        {"declared attribute", "<!DOCTYPE x [<!ATTLIST x", " x@ CDATA ''", ">]><x/>"},
        {"default", declaring(64) + "]><x>", "<x/>", "</x>"},
        {"default of many", declaring(1000) + "]><x>", "<x/>", "</x>"},
        {"default in an entity",
         declaring(64) + "<!ENTITY e '" + repeated("<x/>", 1000) + "'>]><x>", "&e;", "</x>"},
        {"entity", "<!DOCTYPE x [", "<!ENTITY x@ 'x'>", "]><x/>"},
        {"entity reference", "<!DOCTYPE x [<!ENTITY e 'x'>]><status>", "&e;", "</status>"},
        {"laughs", "<!DOCTYPE x [<!ENTITY x@ 'x'>", laughs, "]><status>&x@;</status>"},
        {"laughs in an attribute", "<!DOCTYPE x [<!ENTITY x@ 'x'>", laughs, "]><x y='&x@;'/>"},
        {"chain of entities", "<!DOCTYPE x [<!ENTITY x@ 'x'>", "<!ENTITY x@ '&x~;'>",
         "]><x>&x@;</x>"},
        {"chain of parameter entities", "<!DOCTYPE x [<!ENTITY % x@ 'x'>",
         "<!ENTITY % x@ '&#37;x~;'>", "%x@;]><x/>"},
        {"content model", "<!DOCTYPE x [<!ELEMENT x ", "(", ">]><x/>"},
        {"character reference", "<status>", "&#65;", "</status>"},
        {"comment", "<x>", "<!---->", "</x>"},
        {"section", "<x>", "<![CDATA[]]>", "</x>"},
        {"converted letter", "<?xml version='1.0' encoding='windows-1252'?><status>", "\x80",
         "</status>"},
        {"record", "<x>", "<subscription/><order/>", "</x>"},
        {"container", "<order>", "<orderItems><orderItem/></orderItems>", "</order>"},
        {"element", "<x>", "<x@/>", "</x>"},
        {"name", "<", "x", "/>"},
        {"depth", "", "<x>", ""},
        {"text of nested elements", "<order>" + nested("status"), "x", repeated("</status>", 250)},
        {"date of nested elements", nested("statusChanged") + "2012-03-15T08:30:", "0",
         "Z" + repeated("</statusChanged>", 250)},
        {"number of nested elements", nested("quantity"), " ", repeated("</quantity>", 250)},
        {"flag of nested elements", nested("test"), "T", repeated("</test>", 250)},
    };
    const auto memory = test::peakMemory();
    pthread_attr_t small;
    pthread_attr_init(&small);
    ASSERT_EQ(pthread_attr_setstacksize(&small, kStack), 0);
    ASSERT_EQ(pthread_setattr_default_np(&small), 0);
    std::chrono::nanoseconds worst{};
    std::thread([&] {
        for (const Unit& unit : units) {
            worst = std::max(worst, expectLinear(unit));
        }
    }).join();
    RecordProperty("worst", static_cast<int>(worst / 1us)); // for scripts/bench
    EXPECT_TRUE(test::kIsSanitized || test::peakMemory() - memory < 32 * kMiB);
}

} // namespace
} // namespace store
