#include "platform/URL.h"

#include <string>

#include <gtest/gtest.h>

namespace platform {
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
    for (const std::string text : {"",
                                   "h",
                                   "http:",
                                   "http://",
                                   "http:///path",
                                   "example.com",
                                   "//example.com",
                                   "/etc/passwd",
                                   "file:///etc/passwd",
                                   "javascript:alert(1)",
                                   "-h",
                                   "--help",
                                   "ftp://host/",
                                   "mailto:a@b",
                                   "http://host/a b",
                                   " http://host/",
                                   "http://host/\n",
                                   "http://host/\t",
                                   "http://host/\"",
                                   "http://host/<x>",
                                   "http://host/a\\b",
                                   "http://host/^",
                                   "http://host/`id`",
                                   "http://host/{a}",
                                   "http://host/a|b",
                                   "http://host/\xc3\xa9",
                                   "http://h\xc3\xb6st/",
                                   "http://host/%",
                                   "http://host/%4",
                                   "http://host/%zz",
                                   "http://host/[a]",
                                   "http://host/?q[]=1",
                                   "http://host/#a#b",
                                   "http://host:99999/",
                                   "http://host:port/",
                                   "http:/host",
                                   "http:/host//x",
                                   "http://?q",
                                   "http://host/\x7f"}) {
        EXPECT_FALSE(URL::make(text)) << text;
    }
    EXPECT_FALSE(URL::make(std::string_view("http://host/\0x", 14)));
}

TEST(URL, ToBeShownIsLimitedInLength) {
    const std::string start = "http://host/";
    EXPECT_TRUE(webAddress(start + std::string(2048 - start.size(), 'a')));
    testing::internal::CaptureStderr();
    EXPECT_FALSE(webAddress(start + std::string(2049 - start.size(), 'a')));
    EXPECT_NE(testing::internal::GetCapturedStderr(), "");
}

} // namespace
} // namespace platform
