#include "store/FastSpringSubscriptionParser.h"

#include "tests/support/Test.h"

namespace store {
namespace {

/// Returns the status of an answer's record. "(none)" stands for an absent status, "(no record)"
/// for an absent record, "(fails)" for an unreadable date.
std::string statusOf(const std::string& answer) {
    try {
        const auto record = FastSpringSubscriptionParser(answer).parseSubscription();
        return record ? record->status.value_or("(none)") : "(no record)";
    } catch (const std::out_of_range&) {
        return "(fails)";
    }
}

TEST(SubscriptionParser, TakesEachFieldByItsNameAlone) {
    const std::pair<const char*, const char*> rows[] = {
        {"<a><status>x</status></a>", "(no record)"},
        {"<subscription/>", "(none)"},
        {"<SUBSCRIPTION><STATUS>x</STATUS></SUBSCRIPTION>", "x"},
        {"<s:subscription xmlns:s='x'/>", "(no record)"},
        {"<subscription><status>  Active\n</status></subscription>", "  Active\n"},
        {"<subscription><status>1</status><status>2</status></subscription>", "2"},
        {"<a><subscription/><status>after</status></a>", "after"},
        {"<a><status>before</status><subscription/></a>", "(none)"},
        {"<a><subscription><status>1</status></subscription><subscription/></a>", "(none)"},
        {"<subscription><status>a<![CDATA[b]]>c</status></subscription>", "ac"},
        {"<subscription><status>a<i>inner</i>tail</status></subscription>", "inner"},
        {"<subscription><status>a<i/>tail</status></subscription>", ""},
        // The start of a record does not reset the gathered text.
        {"<status>a<subscription/>b</status>", "a"},
        {"<subscription><status>x</status><cut", "x"},
        {"<HtMl><subscription><status>x</status></subscription></HtMl>", "(none)"},
        {"<subscription><status>x</status><html/><status>y</status></subscription>", "x"},
        {"<subscription><end>2012-03-15</end></subscription>", "(fails)"},
        {"<a><end>never</end></a>", "(fails)"},
        {"<subscription><status>x</status><end>soonZ</end></subscription>", "x"},
    };
    for (const auto& [answer, status] : rows) {
        EXPECT_EQ(statusOf(answer), status) << answer;
    }
}

} // namespace
} // namespace store
