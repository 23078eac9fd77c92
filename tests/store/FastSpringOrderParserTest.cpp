#include "store/FastSpringOrderParser.h"

#include "tests/support/Test.h"

#include "tools/RecordJSON.h"

#include <regex>

namespace store {
namespace {

/// Returns JSON without quotes and without absent or false values.
std::string shortened(const std::string& text) {
    const std::regex absent(R"(,?"\w+":(null|false))");
    std::string result = std::regex_replace(text, absent, "");
    result = std::regex_replace(result, std::regex("\\{,"), "{"); // after an absent first value
    std::erase(result, '"');
    return result;
}

/// Returns all values that the answer sets, "(no record)", or the failure's name.
std::string outcomeOf(const std::string& answer) {
    try {
        const auto order = FastSpringOrderParser(answer).parseOrder();
        return order ? shortened(nlohmann::json(tools::recordJSON(*order)).dump()) : "(no record)";
    } catch (const std::out_of_range&) {
        return "(out_of_range)";
    } catch (const std::invalid_argument&) {
        return "(invalid_argument)";
    }
}

/// Checks the outcomes of contents of an "order" element.
void expectOutcomes(std::initializer_list<std::pair<std::string, std::string>> rows) {
    for (const auto& [content, outcome] : rows) {
        EXPECT_EQ(outcomeOf("<order>" + content + "</order>"), outcome) << content;
    }
}

const std::string kItems = "<orderItems><orderItem><quantity>1</quantity></orderItem></orderItems>";
const std::string kPayments = "<payments><payment><total>1</total></payment></payments>";

TEST(OrderParser, AppendsTheCurrentRecordAtTheEndOfAContainerOrFails) {
    expectOutcomes({
        {kItems, "{orderItems:[{quantity:1}]}"},
        {kPayments, "{payments:[{total:1}]}"},
        {"<orderItems><orderItem><quantity>1</quantity></orderItem><orderItem/></orderItems>",
         "{orderItems:[{}]}"},
        {"<payments><payment><total>1</total></payment><payment><total>2</total></payment>"
         "</payments>",
         "{payments:[{total:2}]}"},
        {"<ORDERITEMS><OrderItem><Quantity>1</Quantity></OrderItem></ORDERITEMS>",
         "{orderItems:[{quantity:1}]}"},
        // A line item that started before its container is still the current one.
        {"<orderItem><quantity>1</quantity></orderItem><orderItems/>",
         "{orderItems:[{quantity:1}]}"},
        {"<payment/><payments/>", "{payments:[{}]}"},
        {kItems + "<orderItems><orderItem/></orderItems>", "{orderItems:[{}]}"},
        {"<orderItems>", "{orderItems:[]}"},
        {"<payments><payment>", "{payments:[]}"},
        {"<orderItems/>", "(invalid_argument)"},
        {kItems + "<orderItems/>", "(invalid_argument)"},
        // The end of "payments" resets the line item and keeps the payment.
        {"<orderItem/>" + kPayments + "<orderItems/>", "(invalid_argument)"},
        {kPayments + "<payments/>", "{payments:[{total:1}]}"},
        {kPayments + "<payments><total>7</total></payments>", "{payments:[{total:7}]}"},
        {kPayments + "<total>7</total>", "{payments:[{total:1}],total:7}"},
    });
    EXPECT_EQ(outcomeOf("<a><orderItems/><payments/></a>"), "(no record)");
    EXPECT_EQ(outcomeOf("<a><payments><order/></payments></a>"), "{}");
    EXPECT_EQ(outcomeOf("<a><order/><html/><orderItems/><payments/></a>"),
              "{orderItems:[],payments:[]}");
}

TEST(OrderParser, TellsTheContextsApart) {
    expectOutcomes({
        {"<reference>r</reference><originIp>i</originIp><addressLine1>1</addressLine1>"
         "<addressLine2>2</addressLine2><city>c</city><region>re</region>"
         "<postalCode>p</postalCode><country>co</country><statusChanged>2012-03-15Z"
         "</statusChanged><orderItems><orderItem><productDisplay>d</productDisplay>"
         "<subscriptionReference>s</subscriptionReference></orderItem></orderItems>"
         "<payments><payment/><statusChanged>2012-03-16Z</statusChanged></payments>",
         "{addressLine1:1,addressLine2:2,city:c,country:co,orderItems:[{productDisplay:d,"
         "subscriptionReference:s}],originIP:i,payments:[{statusChangedDate:2012-03-16T00:00:00Z}],"
         "postalCode:p,reference:r,region:re,statusChangedDate:2012-03-15T00:00:00Z}"},
        {"<status>a</status><payments><status>lost</status><payment/><status>b</status>"
         "<currency>c</currency><total>1</total><methodType>m</methodType>"
         "<declinedReason>d</declinedReason></payments><currency>e</currency>",
         "{currency:e,payments:[{currency:c,declinedReason:d,methodType:m,status:b,total:1}],"
         "status:a}"},
        {"<methodType>m</methodType><declinedReason>d</declinedReason><due>2026-01-01</due>"
         "<dueDate>x</dueDate><referrer>r</referrer><sourceName>s</sourceName>"
         "<sourceKey>k</sourceKey><sourceCampaign>c</sourceCampaign><regionCustom>x</regionCustom>",
         "{}"},
        // Within a line item, the order's element names still fill the order.
        {"<total>1</total><reference>A</reference><orderItems><orderItem><total>2</total>"
         "<reference>B</reference><productName>p</productName></orderItem></orderItems>",
         "{orderItems:[{productName:p}],reference:B,total:2}"},
        {"<payments><payment/><city>c</city><quantity>1</quantity></payments>",
         "{city:c,payments:[{}]}"},
        {"<firstName>1</firstName><purchaser><firstName>2</firstName></purchaser>"
         "<email>3</email><customer/><lastName>4</lastName>",
         "{customerFirstName:1,customerLastName:4,purchaserEmail:3,purchaserFirstName:2}"},
        {"<purchaser/><order><company>c</company></order>", "{purchaserCompany:c}"},
        {"<payments><purchaser><payment/><email>e</email><total>1</total></purchaser></payments>"
         "<phoneNumber>p</phoneNumber><total>2</total>",
         "{payments:[{total:1}],purchaserEmail:e,purchaserPhoneNumber:p,total:2}"},
    });
}

TEST(OrderParser, ConvertsAndFailsLikeEveryParser) {
    expectOutcomes({
        {"<total>19.95</total><tax>1,000</tax><shipping>-5</shipping>",
         "{shipping:18446744073709551611,tax:1,total:19}"},
        {"<total>abc</total><tax>99999999999999999999</tax>", "{tax:9223372036854775807,total:0}"},
        {"<test>TRUE</test><city> Berlin </city><region/>", "{city: Berlin ,isTest:true,region:}"},
        // Containers do not reset the gathered text.
        {"<city>a<customer>b</customer></city>", "{city:ab}"},
        {"<city>a<order>b</order></city>", "{city:ab}"},
        {"<statusChanged>2012-03-15Z</statusChanged><statusChanged>soonZ</statusChanged>", "{}"},
        {"<statusChanged/>", "(out_of_range)"},
        {"<city>1</city><order/><country>2</country>", "{country:2}"},
        {"<city>1</city><cut", "{city:1}"},
        {"<html><order><city>1</city></order></html>", "{}"},
    });
    EXPECT_EQ(outcomeOf("<subscription><city>1</city></subscription>"), "(no record)");
}

} // namespace
} // namespace store
