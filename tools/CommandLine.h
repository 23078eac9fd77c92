#pragma once

#include "base/Fetch.h"
#include "store/FieldTypes.h"
#include "tools/Output.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <vector>

namespace tools {

/// The exit statuses, from good to bad. The worst of several references counts.
enum class ExitStatus { Record = 0, None = 1, Usage = 2, Failure = 3, Unreachable = 4 };

/// A wrong command line, explained in one line for the user.
struct UsageError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

enum class Command { None, Subscription, Cancel, Order, Parse };

/// The command and its options.
struct CommandLine {
    Command command = Command::None;     ///< None: nothing is left to do
    std::vector<std::string> references; ///< of a request; "-" stands for a list on standard input
    store::Text store;                   ///< the store identifier
    std::string kind;                    ///< of an answer that is parsed
    std::string file;                    ///< the path of that answer, or "-"
    Format format = Format::JSON;
    std::vector<std::string> fields; ///< the columns of a table, or empty for the usual ones
    double timeout = 0;              ///< seconds for one request, 0 for the usual limit
    std::size_t jobs = 1;            ///< lookups at the same time
    bool isRaw = false;              ///< print the store's own answer
    bool isVerbose = false;          ///< report each request
    bool isSure = false;             ///< cancel without a question
    bool isDryRun = false;           ///< look up instead of canceling

    /// Returns true if the command only looks up, so that a request is safe to repeat.
    [[nodiscard]] bool isLookup() const { return command != Command::Cancel || isDryRun; }
};

/// Reads the command line. Prints answers about the command itself: help, version, completion.
/// Words that are not options are references exactly as given, and so is every word after "--".
/// @throws UsageError
[[nodiscard]] CommandLine readCommandLine(int argumentCount, const char* const* words);

/// The limits of a request that may take `timeout` seconds.
[[nodiscard]] base::FetchLimits limits(double timeout);

} // namespace tools
