#pragma once

#include "tools/Report.h"

#include <cstddef>
#include <functional>

namespace tools {

/// Looks up `count` references with `jobs` requests at the same time, and passes the reports to
/// `take` in the order of the references, on the calling thread. Stores only a few reports per job
/// at any time. Each job keeps its connection.
/// @param look returns the report of one reference, by its index. Runs on other threads if `jobs`
/// is above 1.
/// @param take receives each report. If `take` throws, the jobs stop sending requests, and the
/// exception leaves this function after the running requests have ended.
void lookUpInOrder(std::size_t count, std::size_t jobs,
                   const std::function<Report(std::size_t index, const store::Fetcher&)>& look,
                   const std::function<void(std::size_t index, const Report&)>& take);

} // namespace tools
