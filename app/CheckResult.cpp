#include "app/CheckResult.h"

#include "base/Escape.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <nlohmann/json.hpp>

namespace app {
namespace {

using nlohmann::ordered_json;

std::string jsonOf(const std::vector<CheckResult>& results) {
    auto array = ordered_json::array();
    for (const auto& [name, passed, detail] : results) {
        array.push_back({{"name", name},
                         {"passed", passed ? ordered_json(*passed) : ordered_json()},
                         {"detail", detail}});
    }
    // Replace invalid UTF-8, which paths can contain.
    return array.dump(4, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string linesOf(const std::vector<CheckResult>& results) {
    std::string lines;
    for (const auto& [name, passed, detail] : results) {
        const char* const mark = !passed ? "[not tested] " : *passed ? "[ok] " : "[failed] ";
        lines += mark + name + ": " + base::escaped(detail) + "\n";
    }
    return lines;
}

} // namespace

int printCheckResults(const std::vector<CheckResult>& results, bool asJSON) {
    const std::string text = asJSON ? jsonOf(results) : linesOf(results);
    const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    const bool hasFailure = std::any_of(results.begin(), results.end(), [](const auto& result) {
        return !result.passed.value_or(true);
    });
    return isWritten && !hasFailure ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace app
