#pragma once

#include "store/Request.h"
#include "tools/CommandLine.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace tools {

/// The kinds of record that an answer can contain.
enum class RecordKind { Subscription, Order };

/// The result for one reference or one file.
struct Report {
    nlohmann::ordered_json object; ///< The printed object: "result" and further keys.
    ExitStatus status;
    std::vector<std::string> messages; ///< For standard error, one line each.
    std::string raw;                   ///< The answer's bytes, empty if the answer is absent.
};

/// Reports the record in an answer, or the reason why the answer is not the store service's.
/// @param name names the answer in messages: a file or an address.
/// @param httpStatus is absent for an answer from a file.
[[nodiscard]] Report reportOf(std::string_view answer, RecordKind kind, const std::string& name,
                              std::optional<int> httpStatus = std::nullopt);

/// Sends the request of the command for one reference and reports the answer. Call it on any thread
/// that `fetcher` allows.
[[nodiscard]] Report ask(const CommandLine& line, const std::string& reference,
                         const store::Fetcher& fetcher);

} // namespace tools
