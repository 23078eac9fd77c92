#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"

#include "tests/support/Test.h"

#include "tools/RecordJSON.h"

namespace store {
namespace {

/// Returns the page's example answer with this root element.
std::string example(const std::string& root) {
    const std::string text = test::readFile(TEST_PROTOCOL_PAGE);
    const auto start = text.find("    <" + root + ">");
    return text.substr(start, text.find("    </" + root + ">") + root.size() + 7 - start);
}

/// Returns the page's table of a record's fields, with the values of an example.
template <class Record>
std::string tableOf(const nlohmann::ordered_json& example) {
    constexpr const char* kKinds[] = {"text", "date", "number", "flag", "list", "list"};
    std::string table = "| element | property | kind | example |\n|---|---|---|---|\n";
    const auto code = [](std::string_view text) {
        return text.empty() ? std::string() : '`' + std::string(text) + '`';
    };
    for (const auto& field : kFields<Record>) {
        const auto& value = example.at(std::string(field.name));
        table += "| " + code(field.element) + " | " + code(field.name) + " | " +
                 kKinds[field.member.index()] + " | " +
                 (value.is_array()    ? std::to_string(value.size())
                  : value.is_null()   ? ""
                  : value.is_string() ? value.template get<std::string>()
                                      : value.dump()) +
                 " |\n";
    }
    return table;
}

TEST(ProtocolPage, ListsTheFieldsWithTheValuesOfItsExamples) {
    const std::string answers[] = {example("subscription"), example("order")};
    const auto subscription = FastSpringSubscriptionParser(answers[0]).parseSubscription();
    const auto order = FastSpringOrderParser(answers[1]).parseOrder();
    ASSERT_TRUE(subscription && order);
    const auto object = tools::recordJSON(*order);
    const std::string text = test::readFile(TEST_PROTOCOL_PAGE);
    for (const auto& table :
         {tableOf<FastSpringSubscription>(tools::recordJSON(*subscription)),
          tableOf<FastSpringOrder>(object), tableOf<FastSpringOrderItem>(object["orderItems"][0]),
          tableOf<FastSpringPaymentItem>(object["payments"][0])}) {
        EXPECT_TRUE(text.find(table) != std::string::npos) << table;
    }
}

} // namespace
} // namespace store
