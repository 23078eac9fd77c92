#include "platform/Log.h"

#include "tests/support/Test.h"

#include <unistd.h>

namespace platform {
namespace {

using testing::HasSubstr;

TEST(Log, WritesOneLineWithControlsAndWhatIsNoTextEscaped) {
    testing::internal::CaptureStderr();
    log("Could not trash '%@'",
        {"a\nb\x1b[31m\x7f\u0085\u00a0\u061c\u200e\u2029\u202e\u2030\u2066\u206a"
         "\xed\x9f\xbf\xf4\x8f\xbf\xbf|\x9b\xbf\xe9|"
         "\xff\xc0\x9b\xe0\x82\x9b\xed\xa0\x80\xf4\x90\x80\x80\xe2\x80"});
    const std::string line = testing::internal::GetCapturedStderr();
    EXPECT_THAT(
        line,
        HasSubstr("Could not trash 'a\\x0ab\\x1b[31m\\x7f\\xc2\\x85\u00a0\\xd8\\x9c\\xe2\\x80\\x8e"
                  "\\xe2\\x80\\xa9\\xe2\\x80\\xae\u2030\\xe2\\x81\\xa6\u206a"
                  "\xed\x9f\xbf\xf4\x8f\xbf\xbf|\\x9b\\xbf\\xe9|"
                  "\\xff\\xc0\\x9b\\xe0\\x82\\x9b\\xed\\xa0\\x80"
                  "\\xf4\\x90\\x80\\x80\\xe2\\x80'\n"));
    EXPECT_EQ(std::count(line.begin(), line.end(), '\n'), 1);
    EXPECT_THAT(line, HasSubstr("[" + std::to_string(getpid()) + "] "));
}

} // namespace
} // namespace platform
