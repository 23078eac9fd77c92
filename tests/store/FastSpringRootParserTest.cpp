#include "store/FastSpringSubscriptionParser.h"

#include "tests/support/Test.h"

#include "base/Timestamp.h"
#include "store/Conversions.h"

#include <clocale>
#include <ctime>
#include <locale>

namespace store {
namespace {

constexpr const char* kNone = "none";
constexpr const char* kFails = "out_of_range";

TEST(RootParser, LetsASubclassReadDatesInItsOwnWay) {
    class Parser : public FastSpringSubscriptionParser {
        using FastSpringSubscriptionParser::FastSpringSubscriptionParser;
        Date fromServerDate(std::string_view /*text*/) const override { return Date::value_type(); }
    };
    Parser parser("<subscription><end>soon</end></subscription>");
    EXPECT_EQ(parser.parseSubscription()->endDate, Date::value_type());
}

std::string outcomeOf(std::string_view text) {
    try {
        const Date date = FastSpringSubscriptionParser("").fromServerDate(text);
        return date ? base::timestampText(*date) : kNone;
    } catch (const std::out_of_range& failure) {
        EXPECT_THAT(failure.what(), testing::HasSubstr("\"" + std::string(text) + "\""));
        return kFails;
    }
}

const std::pair<const char*, const char*> kDates[] = {
    {"2012-03-15T08:30:00.000Z", "2012-03-15T08:30:00Z"},
    {"2012-03-15Z", "2012-03-15T00:00:00Z"},
    {"Z2012-03-15", "2012-03-15T00:00:00Z"},
    {"2024-02-29T23:59:59Z", "2024-02-29T23:59:59Z"},
    {"2026-03-29T02:30:00Z", "2026-03-29T02:30:00Z"}, // skipped in European local time
    {"2023-02-29Z", kNone},
    {"Z", kNone},
    {"2012-03-15T08:30:00.5Z", kFails},
    {"2012-03-15T08:30:00+01:00", kFails},
    {"2012-03-15T08:30:00+01:00Z", kNone},
    {"2012-03-15", kFails},
    {"", kFails},
    {" 2012-03-15Z", kNone},
    {"2012-3-15Z", kNone},
    {"2012-03-5Z", kNone},
    {"2012-03-15T08:30:5Z", kNone},
    {"2012-03-15T24:00:00Z", kNone},
    {"2012-03-15T08:30:60Z", kNone},
    {"2012-13-01Z", kNone},
    {"2012-268-15T08:30:00Z", kNone}, // 268 and 271 are 12 and 15 in their lowest byte
    {"2012-03-271T08:30:00Z", kNone},
    {"0000-01-01Z", kNone},
    {"2012-03-15T08:30:00ZZ", kNone},
    // The digits of a fraction after the third extend the seconds.
    {"2012-03-15T08:30:00.00005Z", "2012-03-15T08:30:05Z"},
    {"2012-03-15T08:30:0.0005Z", "2012-03-15T08:30:05Z"},
    {"2012-03-15T08:30:00.99999999999999999999Z", kNone},
    // Three UTF-16 code units are removed together with the point.
    {"2012-03-15T08:30:00.\xc3\xa9"
     "12Z",
     "2012-03-15T08:30:00Z"},
    {"2012-03-15T08:30:00.\xf0\x9f\x98\x80"
     "1Z",
     "2012-03-15T08:30:00Z"},
    {"2012-03-15T08:30:00.\xf0\x9f\x98\x80Z", kFails},
    {"2012-03-1\xd9\xa5Z", kNone},
};

const std::pair<const char*, std::uint64_t> kNumbers[] = {
    {" \t\n\v\f\r+42", 42},
    {"19.95", 19},
    {"", 0},
    {"-+5", 0},
    {"\xc2\xa0"
     "5",
     0},
    {"-1", 18446744073709551615U},
    {"9223372036854775807", 9223372036854775807U},
    {"9223372036854775808", 9223372036854775807U},
    {"99999999999999999999", 9223372036854775807U},
    {"-9223372036854775808", 9223372036854775808U},
    {"-99999999999999999999", 9223372036854775808U},
};

std::string lowercased(std::string text) {
    lowercase(text);
    return text;
}

void expectOutcomes(const char* where) {
    SCOPED_TRACE(where);
    for (const auto& [text, outcome] : kDates) {
        EXPECT_EQ(outcomeOf(text), outcome) << text;
    }
    for (const auto& [text, number] : kNumbers) {
        EXPECT_EQ(numberFromText(text), number) << text;
    }
    EXPECT_EQ(lowercased("TITLE I"), "title i");
    EXPECT_TRUE(flagFromText("TRUE"));
    const auto moment = base::timestampFromText("2026-03-29T01:30:00.012345Z");
    EXPECT_EQ(base::timestampText(moment.value()), "2026-03-29T01:30:00.012345Z");
}

TEST(DatesAndNumbers, AreReadTheSameInEveryTimeZoneAndLocale) {
    expectOutcomes("C");
    for (const char* zone : {"America/New_York", "Asia/Tehran", "Europe/Berlin", "Pacific/Apia"}) {
        setenv("TZ", zone, 1);
        tzset();
        expectOutcomes(zone);
    }
    // Locales with a decimal comma, with two kinds of i, and with their own digits.
    setenv("LOCPATH", TEST_LOCALES, 1);
    for (const char* name : {"de_DE.UTF-8", "tr_TR.UTF-8", "fa_IR.UTF-8"}) {
        std::locale::global(std::locale(name));
        ASSERT_STREQ(std::setlocale(LC_ALL, nullptr), name);
        expectOutcomes(name);
    }
    std::locale::global(std::locale::classic());
}

TEST(Conversions, LowercaseWhatCanBecomeAnAsciiLetterAndTakeOnlyTrueForTrue) {
    EXPECT_EQ(lowercased("source\xe2\x84\xaa"
                         "ey\xe2\x84\xaa"),
              "sourcekeyk");
    EXPECT_EQ(lowercased("C\xc4\xb0TY\xc3\x89"), "c\xc4\xb0ty\xc3\x89");
    for (const char* text : {"", "yes", "1", "true ", "\ntrue", "truetrue"}) {
        EXPECT_FALSE(flagFromText(text)) << text;
    }
}

} // namespace
} // namespace store
