#include "platform/StringsTable.h"

#include "tests/support/Test.h"

namespace platform {
namespace {

using testing::HasSubstr;
using testing::IsEmpty;

struct Row {
    const char* what;
    std::string bytes;
    StringsTable table;
};

TEST(StringsTable, ReadsTheWholeSyntax) {
    const Row rows[] = {
        {"quoted and bare words",
         "\"a b\" = \"c\"; storeid = acme-1.x;",
         {{"a b", "c"}, {"storeid", "acme-1.x"}}},
        {"comments",
         "/* one \n * two */ a = \"b\"; // c = \"d\";\n e=f;//",
         {{"a", "b"}, {"e", "f"}}},
        {"an empty value", "\"a\" = \"\";", {{"a", ""}}},
        {"a key that stands for itself", "\"a\"; b;", {{"a", "a"}, {"b", "b"}}},
        {"the first of two", "a = 1; a = 2;", {{"a", "1"}}},
        {"escapes",
         R"("\"\\\n\t\U00e9\101\q" = "\UD83D\UDE00";)",
         {{"\"\\\n\t\xc3\xa9"
           "Aq",
           "\xf0\x9f\x98\x80"}}},
        {"a mark of UTF-8", "\xef\xbb\xbf\"\xc3\xa9\" = b;", {{"\xc3\xa9", "b"}}},
        {"UTF-16, little end first",
         std::string("\xff\xfe"
                     "a\0=\0b\0;\0",
                     10),
         {{"a", "b"}}},
        {"UTF-16, big end first", std::string("\xfe\xff\0a\0=\0b\0;", 10), {{"a", "b"}}},
    };
    for (const auto& row : rows) {
        EXPECT_EQ(parseStringsTable(row.bytes, "x"), row.table) << row.what;
    }
}

TEST(StringsTable, IsEmptyWithOneLineAboutTheFirstError) {
    const std::pair<std::string, std::string> rows[] = {
        {"a = \"b\"\nc = d;", "line 2: expected ';'"},
        {"a = b;\n\n= c;", "line 3: expected a key"},
        {"a = ;", "line 1: expected a value"},
        {"a = \"b;\n", "expected '\"'"},
        {"/* a = b;", "expected the end of the comment"},
        {"a = \"\\U12\";", "expected four hexadecimal digits"},
        {"a = \"\\", "expected an escaped character"},
        {"a = \"\\UD83D\";", "expected whole surrogate pairs"},
        {"a = \"\xe9\";", "expected text in UTF-8"},
        {std::string("\xff\xfe"
                     "a",
                     3),
         "expected text in UTF-16LE"},
    };
    for (const auto& [bytes, expected] : rows) {
        testing::internal::CaptureStderr();
        EXPECT_THAT(parseStringsTable(bytes, "some.strings"), IsEmpty());
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_THAT(log, HasSubstr("'some.strings'"));
        EXPECT_THAT(log, HasSubstr(expected));
    }
}

} // namespace
} // namespace platform
