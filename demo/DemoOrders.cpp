#include "demo/DemoOrders.h"

#include <array>
#include <string_view>
#include <utility>

namespace demo {
namespace {

// Each order is stored as its answer, because orders never change.
constexpr std::array kAnswers = {
    std::pair<std::string_view, std::string_view>{"ORDER-2001",
                                                  R"(<?xml version="1.0" encoding="UTF-8"?>
<order>
  <reference>ORDER-2001</reference>
  <status>completed</status>
  <statusChanged>2026-02-01T10:15:30.000Z</statusChanged>
  <test>false</test>
  <due>2026-02-15Z</due>
  <currency>EUR</currency>
  <referrer>newsletter</referrer>
  <originIp>192.0.2.17</originIp>
  <total>119.95</total>
  <tax>19</tax>
  <shipping>0</shipping>
  <customer>
    <firstName>Ada</firstName>
    <lastName>Example</lastName>
    <company>Example &amp; Daughters</company>
    <email>ada@example.com</email>
    <phoneNumber>+1 555 0100</phoneNumber>
  </customer>
  <purchaser>
    <firstName>Paul</firstName>
    <lastName>Purchaser</lastName>
    <company>Purchasing Office</company>
    <email>paul@example.com</email>
    <phoneNumber>+1 555 0101</phoneNumber>
  </purchaser>
  <address>
    <addressLine1>1 Sample Street</addressLine1>
    <addressLine2/>
    <city>Springfield</city>
    <region>Example State</region>
    <postalCode>00001</postalCode>
    <country>US</country>
  </address>
  <orderItems>
    <orderItem>
      <productDisplay>Acme Studio</productDisplay>
      <productName>acme-studio</productName>
      <quantity>1</quantity>
      <subscriptionReference>DEMO-1001</subscriptionReference>
    </orderItem>
    <orderItem>
      <productDisplay>Acme Brushes</productDisplay>
      <productName>acme-brushes</productName>
      <quantity>2</quantity>
    </orderItem>
    <orderItem>
      <productDisplay>Acme Colors</productDisplay>
      <productName>acme-colors</productName>
      <quantity>3</quantity>
      <subscriptionReference>DEMO-1002</subscriptionReference>
    </orderItem>
  </orderItems>
  <payments>
    <payment>
      <status>failed</status>
      <statusChanged>2026-02-01T10:14:00Z</statusChanged>
      <methodType>creditcard</methodType>
      <declinedReason>expired</declinedReason>
      <currency>EUR</currency>
      <total>119</total>
    </payment>
    <payment>
      <status>completed</status>
      <statusChanged>2026-02-01T10:15:30Z</statusChanged>
      <methodType>creditcard</methodType>
      <declinedReason/>
      <currency>EUR</currency>
      <total>119</total>
    </payment>
  </payments>
</order>
)"},
    std::pair<std::string_view, std::string_view>{"ORDER-2002",
                                                  R"(<?xml version="1.0" encoding="UTF-8"?>
<order>
  <reference>ORDER-2002</reference>
  <status>open</status>
  <statusChanged>2026-03-15T08:30:00Z</statusChanged>
  <currency>USD</currency>
  <total>-5</total>
  <customer><firstName>Bob</firstName><email>bob@example.com</email></customer>
  <orderItems>
    <orderItem><productName>acme-studio</productName><quantity>1</quantity></orderItem>
  </orderItems>
  <payments>
    <payment><status>open</status><methodType>invoice</methodType><total>-5</total></payment>
  </payments>
</order>
)"},
    std::pair<std::string_view, std::string_view>{"ORDER-2003",
                                                  R"(<?xml version="1.0" encoding="UTF-8"?>
<order>
  <reference>ORDER-2003</reference>
  <test>true</test>
  <orderItems/>
</order>
)"},
};

} // namespace

std::string orderAnswer(const std::string& reference) {
    for (const auto& [known, answer] : kAnswers) {
        if (known == reference) {
            return std::string(answer);
        }
    }
    return "<response><error>There is no such order</error></response>";
}

} // namespace demo
