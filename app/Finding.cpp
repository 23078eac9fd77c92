#include "app/Finding.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>

#include <nlohmann/json.hpp>

namespace app {
namespace {

using nlohmann::ordered_json;

std::string jsonOf(const std::vector<Finding>& findings) {
    auto array = ordered_json::array();
    for (const auto& [what, isRight, detail] : findings) {
        array.push_back({{"what", what}, {"isRight", isRight}, {"detail", detail}});
    }
    // A path need not be UTF-8.
    return array.dump(4, ' ', false, ordered_json::error_handler_t::replace) + "\n";
}

std::string linesOf(const std::vector<Finding>& findings) {
    std::string lines;
    for (const auto& [what, isRight, detail] : findings) {
        lines += (isRight ? "[ok] " : "[NO] ") + what + ": " + detail + "\n";
    }
    return lines;
}

} // namespace

int printFindings(const std::vector<Finding>& findings, bool asJSON) {
    const std::string text = asJSON ? jsonOf(findings) : linesOf(findings);
    const bool isWritten = std::fputs(text.c_str(), stdout) >= 0 && std::fflush(stdout) == 0;
    const bool isRight = std::all_of(findings.begin(), findings.end(),
                                     [](const auto& finding) { return finding.isRight; });
    return isRight && isWritten ? EXIT_SUCCESS : EXIT_FAILURE;
}

} // namespace app
