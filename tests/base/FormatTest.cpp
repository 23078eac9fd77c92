#include "base/Format.h"

#include "base/Timestamp.h"
#include "tests/support/Test.h"

namespace base {
namespace {

TEST(FormatText, PutsArgumentsInOrderAndSearchesThemNotAgain) {
    EXPECT_EQ(formatted("%@?f=x&r=%@", {"a%@b", "c"}), "a%@b?f=x&r=c");
    EXPECT_EQ(formatted("path: %@ %@", {std::nullopt}), "path: (null) (null)");
    EXPECT_EQ(formatted("100% of %", {"unused"}), "100% of %");
}

TEST(Timestamp, RoundTripsAndRefusesOtherTexts) {
    for (const char* text : {"2026-01-31T08:30:00.000001Z", "1969-12-31T23:59:59.999999Z",
                             "2024-02-29T00:00:00.000000Z", "0001-01-01T00:00:00.000000Z"}) {
        const auto timestamp = timestampFromText(text);
        ASSERT_TRUE(timestamp) << text;
        EXPECT_EQ(timestampText(*timestamp), text);
    }
    for (const char* text : {"", "yesterday", "2026-01-31T08:30:00Z", "2026-01-31 08:30:00.000001Z",
                             "2026-02-29T00:00:00.000000Z", "2026-01-31T24:00:00.000000Z",
                             "2026-01-31T08:30:00.000001Z ", "2026-01-31T08:30:00.-00001Z"}) {
        EXPECT_FALSE(timestampFromText(text)) << text;
    }
}

} // namespace
} // namespace base
