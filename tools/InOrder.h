#pragma once

#include "tools/Report.h"

#include <cstddef>
#include <functional>

namespace tools {

/// Looks up `count` references with `jobs` requests at the same time, and hands on the reports in
/// the order of the references, on the calling thread. Contains only a few reports per job at any
/// time. Each job keeps its connection.
/// @param look returns the report of one reference, by its index. Runs on other threads if `jobs`
/// is above 1.
/// @param take receives each report. If it throws, no further request is sent, and the exception
/// leaves this function after the requests under way have ended.
void lookUpInOrder(std::size_t count, std::size_t jobs,
                   const std::function<Report(std::size_t index, const store::Fetcher&)>& look,
                   const std::function<void(std::size_t index, const Report&)>& take);

} // namespace tools
