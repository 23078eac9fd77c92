// Answers that were made to do harm: each ends soon, in little memory, also on a small stack.
#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"

#include "tests/support/LoopbackServer.h"
#include "tests/support/Measure.h"
#include "tests/support/TestHome.h"

#include <algorithm>
#include <chrono>
#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <pthread.h>
#include <sys/inotify.h>
#include <unistd.h>

namespace store {
namespace {

using namespace std::chrono_literals;

constexpr std::size_t kMiB = std::size_t{1} << 20U; // as much as is taken from the network
constexpr std::size_t kStack = (test::kIsSanitized ? 4096 : 512) * std::size_t{1024};
constexpr auto kLongest = 100ms;

/// A name of its own, three letters long, for each number.
std::string name(std::size_t number) {
    constexpr std::string_view kLetters = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ";
    std::string text;
    for (int place = 0; place < 3; ++place) {
        text += kLetters[number % kLetters.size()];
        number /= kLetters.size();
    }
    return text;
}

std::string joined(std::size_t count, const std::function<std::string(std::size_t)>& part) {
    std::string result;
    for (std::size_t number = 0; number < count; ++number) {
        result += part(number);
    }
    return result;
}

std::string repeated(const std::string& text, std::size_t count) {
    return joined(count, [&](std::size_t) { return text; });
}

/// A document with an internal document type, whose status is `status`.
std::string declaring(const std::string& declarations, const std::string& status) {
    return "<!DOCTYPE a [" + declarations + "]><subscription><status>" + status +
           "</status></subscription>";
}

std::string chain(const std::string& mark) {
    const std::string reference = mark.empty() ? "&" : "&#37;";
    return "<!ENTITY " + mark + name(0) + " 'x'>" + joined(60000, [&](std::size_t number) {
               return "<!ENTITY " + mark + name(number + 1) + " '" + reference + name(number) +
                      ";'>";
           });
}

std::string laughs() {
    return "<!ENTITY a0 'laugh'>" + joined(20, [](std::size_t level) {
               return "<!ENTITY a" + std::to_string(level + 1) + " '" +
                      repeated("&a" + std::to_string(level) + ";", 10) + "'>";
           });
}

/// What a document consists of: `unit` over and over, "@" in it a name of its own each time.
struct Unit {
    const char* what;
    std::string head;
    std::string unit;
    std::string tail;

    [[nodiscard]] std::string document(std::size_t size) const {
        std::string text = head;
        for (std::size_t number = 0; text.size() + unit.size() + tail.size() < size; ++number) {
            const auto at = unit.find('@');
            text += unit.substr(0, at) +
                    (at == std::string::npos ? "" : name(number) + unit.substr(at + 1));
        }
        return text + tail;
    }
};

template <class Parser>
std::chrono::nanoseconds timeOf(const std::string& document) {
    auto fastest = std::chrono::nanoseconds::max();
    for (int round = 0; round < (test::kIsSanitized ? 1 : 5); ++round) {
        const auto start = test::threadTime();
        Parser parser(document);
        try {
            if constexpr (std::is_same_v<Parser, FastSpringOrderParser>) {
                static_cast<void>(parser.parseOrder());
            } else {
                static_cast<void>(parser.parseSubscription());
            }
        } catch (const std::out_of_range&) {
        }
        fastest = std::min(fastest, test::threadTime() - start);
    }
    return fastest;
}

template <class Parser>
void expectLinear(const Unit& unit) {
    SCOPED_TRACE(unit.what);
    // Of sizes at which the tables of names still fit the processor's caches.
    const auto small = timeOf<Parser>(unit.document(kMiB / 32));
    const auto large = timeOf<Parser>(unit.document(kMiB / 8));
    const auto largest = timeOf<Parser>(unit.document(kMiB));
    if (!test::kIsSanitized) {
        EXPECT_LT(large, 6 * small);
        EXPECT_LT(largest, kLongest);
    }
}

TEST(HostileAnswers, TakeTimeInProportionToTheirSize) {
    const auto nested = [](const std::string& tag) { return repeated("<" + tag + ">", 250); };
    const auto declaring = [](std::size_t attributes) {
        const auto declared = [](auto number) { return " " + name(number) + " CDATA ''"; };
        return "<!DOCTYPE x [<!ATTLIST x" + joined(attributes, declared) + ">";
    };
    const Unit units[] = {
        {"plus", "<end>", "+", "Z</end>"},
        {"point", "<end>", ".", "ZZ</end>"},
        {"kelvin sign in a flag", "<test>", "\xe2\x84\xaa", "</test>"},
        {"kelvin sign in a name", "<", "\xe2\x84\xaa", "/>"},
        {"attribute", "<x", " @=''", "/>"},
        {"declared attribute", "<!DOCTYPE x [<!ATTLIST x", " @ CDATA ''", ">]><x/>"},
        {"default", declaring(64) + "]><x>", "<x/>", "</x>"},
        {"default of many", declaring(1000) + "]><x>", "<x/>", "</x>"},
        {"default in an entity",
         declaring(64) + "<!ENTITY e '" + repeated("<x/>", 1000) + "'>]><x>", "&e;", "</x>"},
        {"entity", "<!DOCTYPE x [", "<!ENTITY @ 'x'>", "]><x/>"},
        {"entity reference", "<!DOCTYPE x [<!ENTITY e 'x'>]><status>", "&e;", "</status>"},
        {"character reference", "<status>", "&#65;", "</status>"},
        {"comment", "<x>", "<!---->", "</x>"},
        {"section", "<x>", "<![CDATA[]]>", "</x>"},
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
    for (const auto& unit : units) {
        expectLinear<FastSpringSubscriptionParser>(unit);
        expectLinear<FastSpringOrderParser>(unit);
    }
    EXPECT_TRUE(test::kIsSanitized || test::peakMemory() - memory < 32 * kMiB);
}

enum class Outcome { Whole, Broken };

struct Row {
    const char* what;
    Outcome outcome;
    std::string answer;
};

/// Runs a function on a thread whose stack is small.
void onSmallStack(std::function<void()> function) {
    pthread_attr_t attributes;
    pthread_attr_init(&attributes);
    ASSERT_EQ(pthread_attr_setstacksize(&attributes, kStack), 0);
    pthread_t thread{};
    const auto run = [](void* context) -> void* {
        (*static_cast<std::function<void()>*>(context))();
        return nullptr;
    };
    ASSERT_EQ(pthread_create(&thread, &attributes, run, &function), 0);
    pthread_join(thread, nullptr);
    pthread_attr_destroy(&attributes);
}

void expectOutcome(const Row& row, std::size_t memoryBefore) {
    SCOPED_TRACE(row.what);
    const auto start = test::threadTime();
    FastSpringSubscriptionParser parser(row.answer);
    const auto record = parser.parseSubscription();
    const auto taken = test::threadTime() - start;
    EXPECT_EQ(parser.isParsingError, row.outcome == Outcome::Broken);
    EXPECT_LT((record ? record->status.value_or("") : "").size(), 5 * kMiB);
    if (!test::kIsSanitized) {
        EXPECT_LT(taken, kLongest);
        EXPECT_LT(test::peakMemory() - memoryBefore, 32 * kMiB);
    }
}

TEST(HostileAnswers, EndSoonAndInLittleMemory) {
    const Row rows[] = {
        {"laughs", Outcome::Broken, declaring(laughs(), "&a20;")},
        {"laughs in an attribute", Outcome::Broken, declaring(laughs(), "<b c='&a20;'/>")},
        {"a small entity, very often", Outcome::Broken,
         declaring("<!ENTITY a '" + std::string(200, 'x') + "'>", repeated("&a;", kMiB / 3))},
        {"a long chain of entities", Outcome::Whole, declaring(chain(""), "&" + name(60000) + ";")},
        {"a long chain in an attribute", Outcome::Whole,
         declaring(chain(""), "<b c='&" + name(60000) + ";'/>")},
        {"a long chain of parameter entities", Outcome::Whole,
         declaring(chain("% ") + "%" + name(60000) + ";", "")},
        {"a deep content model", Outcome::Broken,
         declaring("<!ELEMENT a " + std::string(kMiB, '('), "")},
        {"a long default", Outcome::Whole,
         declaring("<!ATTLIST b c CDATA '" + std::string(kMiB / 2, 'x') + "'>",
                   repeated("<b/>", kMiB / 8))},
        {"as many declared attributes as may be", Outcome::Whole,
         declaring(repeated("<!ATTLIST b c CDATA ''>", 64), "")},
        {"one more", Outcome::Broken, declaring(repeated("<!ATTLIST b c CDATA ''>", 65), "")},
        {"deep nesting", Outcome::Broken, repeated("<subscription>", kMiB / 14)},
        {"windows-1252", Outcome::Whole,
         "<?xml version='1.0' encoding='windows-1252'?><a>" + std::string(kMiB, '\x80') + "</a>"},
    };
    const auto memory = test::peakMemory();
    onSmallStack([&] {
        for (const auto& row : rows) {
            expectOutcome(row, memory);
        }
        const std::string whole = declaring("<!ENTITY a 'b'>", "&a;<![CDATA[c]]>&#233;");
        for (std::size_t length = 0; length < whole.size(); ++length) {
            expectOutcome({"a cut answer", Outcome::Broken, whole.substr(0, length)}, memory);
        }
    });
}

TEST(HostileAnswers, MakeTheParserOpenAndAskForNothing) {
    const test::TestHome home;
    const auto file = test::TestHome::path() / "secret";
    test::writeFile(file, "<!ENTITY a 'secret'>");
    const test::LoopbackServer server(test::httpReply("<!ENTITY a 'secret'>"));
    const int watch = inotify_init1(IN_NONBLOCK | IN_CLOEXEC);
    ASSERT_GE(inotify_add_watch(watch, file.c_str(), IN_ALL_EVENTS), 0);
    char events[4096];
    for (const std::string& address : {file.native(), "file://" + file.native(), server.url()}) {
        const std::string system = " SYSTEM '" + address + "'";
        for (const std::string& answer :
             {"<!DOCTYPE subscription" + system + "><subscription/>",
              "<!DOCTYPE subscription PUBLIC 'x' '" + address + "'><subscription/>",
              declaring("<!ENTITY a" + system + ">", "&a;"),
              declaring("<!ENTITY a" + system + ">", "<b c='&a;'/>"),
              declaring("<!ENTITY % a" + system + "> %a;", "&a;"),
              declaring("<!NOTATION n" + system + "><!ENTITY a" + system + " NDATA n>", "")}) {
            const auto record = FastSpringSubscriptionParser(answer).parseSubscription();
            EXPECT_THAT(record ? record->status.value_or("") : "", testing::IsEmpty()) << answer;
        }
    }
    EXPECT_THAT(server.heads(), testing::IsEmpty());
    EXPECT_EQ(read(watch, events, sizeof events), -1);
    test::writeFile(file, "a change, to see that the watch sees");
    EXPECT_GT(read(watch, events, sizeof events), 0);
    close(watch);
}

} // namespace
} // namespace store
