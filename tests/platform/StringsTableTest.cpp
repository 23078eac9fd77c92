#include "platform/StringsTable.h"

#include "tests/support/Test.h"

namespace platform {
namespace {

using testing::Each;
using testing::HasSubstr;
using testing::IsEmpty;

/// Returns what the build makes of each document, std::nullopt where it finds an error. All in one
/// process, because Python starts slowly.
std::vector<std::optional<StringsTable>> builtTables(const std::vector<std::string>& documents) {
    const auto folder = test::TestHome::path() / "texts";
    std::filesystem::remove_all(folder);
    for (std::size_t i = 0; i < documents.size(); ++i) {
        test::writeFile(folder / "read" / std::to_string(i), documents[i]);
    }
    test::writeFile(folder / "build.py", R"(
import pathlib, sys, texts
folder = pathlib.Path(sys.argv[1])
for file in (folder / "read").iterdir():
    try:
        texts.write({file.name: texts.table(file)}, "Acme", folder)
    except SystemExit:
        pass
)");
    const std::string command = TEST_PYTHON " '" + (folder / "build.py").string() + "' '" +
                                folder.string() + "' >/dev/null";
    EXPECT_EQ(std::system(command.c_str()), 0);
    std::vector<std::optional<StringsTable>> tables;
    for (std::size_t i = 0; i < documents.size(); ++i) {
        const auto table = folder / (std::to_string(i) + ".lproj/Localizable.strings");
        tables.push_back(std::filesystem::exists(table) ? std::optional(readStringsTable(table))
                                                        : std::nullopt);
    }
    return tables;
}

TEST(StringsTable, ReadsTheWholeSyntax) {
    const std::tuple<const char*, std::string, StringsTable> rows[] = {
        {"quoted and bare words",
         "\"a b\" = \"c\"; storeid = acme-1.x;",
         {{"a b", "c"}, {"storeid", "acme-1.x"}}},
        {"comments",
         "/* one \n * two */ a = \"b\"; // c = \"d\";\n e=f;//",
         {{"a", "b"}, {"e", "f"}}},
        {"a short comment, and a mark of templates", "/***/ a = \"@b@\";", {{"a", "@b@"}}},
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
    std::vector<std::string> documents;
    std::vector<std::optional<StringsTable>> tables;
    for (const auto& [what, bytes, table] : rows) {
        EXPECT_EQ(parseStringsTable(bytes, "x"), table) << what;
        documents.push_back(bytes);
        tables.emplace_back(table)->emplace("Product Name", "Acme");
    }
    EXPECT_EQ(builtTables(documents), tables);
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
    std::vector<std::string> documents;
    for (const auto& [bytes, expected] : rows) {
        documents.push_back(bytes);
        testing::internal::CaptureStderr();
        EXPECT_THAT(parseStringsTable(bytes, "some.strings"), IsEmpty());
        const std::string log = testing::internal::GetCapturedStderr();
        EXPECT_THAT(log, HasSubstr("'some.strings'"));
        EXPECT_THAT(log, HasSubstr(expected));
    }
    EXPECT_THAT(builtTables(documents), Each(std::nullopt));
    testing::internal::CaptureStderr();
    EXPECT_THAT(readStringsTable("/"), IsEmpty());
    EXPECT_THAT(testing::internal::GetCapturedStderr(), HasSubstr("'/', line 1: expected a reg"));
}

} // namespace
} // namespace platform
