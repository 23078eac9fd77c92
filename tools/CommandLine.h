#pragma once

#include "base/Fetch.h"
#include "store/FieldTypes.h"
#include "tools/Output.h"

#include <stdexcept>
#include <string>
#include <vector>

namespace tools {

/// The exit statuses, from good to bad: of several references the worst counts.
enum class ExitStatus { Record = 0, None = 1, Usage = 2, Failure = 3, Unreachable = 4 };

/// What is wrong with the command line, in one line for the user.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class Command { None, Subscription, Cancel, Order, Parse };

/// What the command line asks for.
struct CommandLine {
    Command command = Command::None;     ///< None: nothing is left to do
    std::vector<std::string> references; ///< of a request; "-" stands for a list on standard input
    store::Text store;                   ///< the store identifier
    std::string kind;                    ///< of an answer that is parsed
    std::string file;                    ///< where that is, or "-"
    Format format = Format::JSON;
    double timeout = 0;     ///< seconds for one request, 0 for the usual limit
    bool isRaw = false;     ///< print the store's own answer
    bool isVerbose = false; ///< tell of each request
    bool isSure = false;    ///< cancel without a question
};

/// Reads the command line. Prints what it asks about the command itself: help, version, completion.
/// @throws UsageError
[[nodiscard]] CommandLine readCommandLine(int argumentCount, const char* const* words);

/// The limits of a request that may take `timeout` seconds.
[[nodiscard]] base::FetchLimits limits(double timeout);

} // namespace tools
