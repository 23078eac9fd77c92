// Whatever lies in the file, a moment that is said to be stored is there afterwards, and all else
// is as before.
#include "platform/UserDefaults.h"
#include "tests/fuzz/Fuzz.h"
#include "tests/support/TestHome.h"

#include <string>

void fuzz(std::string_view input) {
    static const test::TestHome home;
    static const auto file = test::TestHome::path() / "config" / "fuzz.conf";
    constexpr std::string_view kKey = "lastRunUserDefaultKey";
    const platform::UserDefaults defaults("fuzz");
    const auto moment = base::timestampFromText("2026-03-15T08:30:00.123456Z").value();

    test::writeFile(file, input);
    const auto before = defaults.date(kKey);
    require(!before || defaults.text(kKey) == base::timestampText(*before));
    const auto other = defaults.text("other");
    if (!defaults.setDate(kKey, moment)) {
        require(defaults.date(kKey) == moment);
        require(defaults.text("other") == other);
    } else {
        require(test::readFile(file) == input);
    }
}
