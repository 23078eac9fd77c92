#include "base/URL.h"

#include "tests/support/HostileAddresses.h"

#include <string>

#include <gtest/gtest.h>

namespace base {
namespace {

TEST(URL, IsMadeOfWebAddressesExactlyAsTheyStand) {
    for (const std::string text :
         {"http://127.0.0.1:8642/fastspring.php?f=x&subscriptionRef=A&b=c", "https://example.com",
          "HTTP://Example.COM/%41?q=a'b(c)*!~#part", "http://[::1]:80/", "http://user@host/",
          "http://host/fastspring.php?f=x&subscriptionRef="}) {
        const auto url = URL::make(text);
        ASSERT_TRUE(url) << text;
        EXPECT_EQ(url->text(), text);
    }
}

TEST(URL, IsNotMadeOfWhatCouldBeReadDifferently) {
    for (const auto* text : test::kHostileAddresses) {
        EXPECT_FALSE(URL::make(text)) << text;
    }
    EXPECT_FALSE(URL::make(std::string_view("http://host/\0x", 14)));
}

} // namespace
} // namespace base
