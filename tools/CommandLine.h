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
    Command command = Command::None;     ///< None if the help or the version was printed.
    std::vector<std::string> references; ///< Of a request. "-" stands for a list on standard input.
    store::Text store;                   ///< The store identifier.
    std::string kind;                    ///< The kind of record that `parse` reads.
    std::string file;                    ///< The path of the answer for `parse`, or "-".
    Format format = Format::JSON;
    std::vector<std::string> fields; ///< The columns of a table, or empty for the default columns.
    double timeout = 0;              ///< Seconds for one request, or 0 for the default limit.
    std::size_t jobs = 1;            ///< Lookups at the same time.
    bool isRaw = false;              ///< Print the store's own answer.
    bool isVerbose = false;          ///< Report each request.
    bool isSure = false;             ///< Cancel without asking.
    bool isDryRun = false;           ///< Look up instead of canceling.

    /// Returns true if the command only looks up, so that a request is safe to repeat.
    [[nodiscard]] bool isLookup() const { return command != Command::Cancel || isDryRun; }
};

/// Reads the command line. Prints the help, the version or a completion script if it asks for one.
/// Arguments that are not options are references exactly as given, and so are all after "--".
/// @throws UsageError
[[nodiscard]] CommandLine readCommandLine(int argumentCount, const char* const* arguments);

/// Returns the limits of a request that may take `timeout` seconds, or the default limits for 0.
[[nodiscard]] base::FetchLimits limits(double timeout);

} // namespace tools
