#pragma once

namespace test {

/// What a store could send for the address of the account page and no browser may ever get.
// One a line otherwise.
// clang-format off
inline constexpr const char* kHostileAddresses[] = {
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

} // namespace test
