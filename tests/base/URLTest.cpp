#include "base/URL.h"

#include "base/Format.h"

#include "tests/support/Test.h"

namespace base {
namespace {

TEST(Format, PutsArgumentsInOrderAndSearchesThemNotAgain) {
    EXPECT_EQ(formatted("%@?f=x&r=%@", {"a%@b", "c"}), "a%@b?f=x&r=c");
    EXPECT_EQ(formatted("path: %@ %@", {std::nullopt}), "path: (null) (null)");
}

// clang-format would put each on its own line.
// clang-format off
constexpr const char* kHostileAddresses[] = {
    "", "h", "http:", "http://", "http:///path", "example.com", "//example.com", "/etc/passwd",
    "file:///etc/passwd", "javascript:alert(1)", "-h", "--help", "ftp://host/", "mailto:a@b",
    "http://host/a b", " http://host/", "http://host/\n", "http://host/\t", "http://host/\"",
    "http://host/<x>", "http://host/a\\b", "http://host/^", "http://host/`id`", "http://host/{a}",
    "http://host/a|b", "http://host/\xc3\xa9", "http://h\xc3\xb6st/", "http://host/%",
    "http://host/%4", "http://host/%zz", "http://host/[a]", "http://host/?q[]=1",
    "http://host/#a#b", "http://host:99999/", "http://host:port/", "http:/host", "http:/host//x",
    "http://?q", "http://host/\x7f", "data:text/html,x", "file://host/etc/passwd",
    "smb://host/share", "view-source:http://host/", "$HOME", "http://[::1", "http ://host/",
    "https:host", "\xe2\x80\xaehttp://host/", "http://host/${IFS}", "http://host:-1/",
    "http://:80/",
};
// clang-format on

TEST(URL, IsMadeOfWebAddressesAsTheyStandAndNotOfWhatCouldBeReadDifferently) {
    for (const std::string text :
         {"http://127.0.0.1:8642/fastspring.php?f=x&subscriptionRef=A&b=c", "https://example.com",
          "HTTP://Example.COM/%41?q=a'b(c)*!~#part", "http://[::1]:80/", "http://user@host/",
          "http://host/fastspring.php?f=x&subscriptionRef="}) {
        const auto url = URL::make(text);
        EXPECT_EQ(url ? url->text() : "", text);
    }
    for (const auto* text : kHostileAddresses) {
        EXPECT_FALSE(URL::make(text)) << text;
    }
    EXPECT_FALSE(URL::make(std::string_view("http://host/\0x", 14)));
}

} // namespace
} // namespace base
