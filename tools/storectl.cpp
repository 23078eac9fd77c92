// The command line of the store client: sends requests for subscriptions or orders, or parses
// answers from files, and prints JSON objects or tables.

#include "platform/HeldSignals.h"
#include "platform/Log.h"
#include "platform/StandardStreams.h"
#include "tools/CommandLine.h"
#include "tools/InOrder.h"
#include "tools/Input.h"
#include "tools/Output.h"
#include "tools/Printer.h"
#include "tools/Report.h"

#include <clocale>
#include <csignal>
#include <iostream>
#include <string>

namespace {

using tools::Command;
using tools::CommandLine;
using tools::ExitStatus;
using tools::Report;

/// Cancels one reference after the other. A signal takes effect after the running request's outcome
/// is printed.
void cancelAll(const CommandLine& line, const std::vector<std::string>& references,
               tools::Printer& printer) {
    for (std::size_t index = 0; index < references.size(); ++index) {
        const platform::HeldSignals untilPrinted;
        const Report report = tools::ask(line, references[index], base::fetch);
        try {
            printer.print(index, report);
        } catch (const tools::OutputError& error) {
            throw tools::OutputError(error.what() +
                                     (". The request to cancel " + references[index]) +
                                     " was sent: " + report.object.value("result", ""));
        }
    }
}

/// Sends a request for each reference.
/// @return the worst of their statuses.
ExitStatus askAll(const CommandLine& line) {
    const bool isCancel = line.command == Command::Cancel;
    const tools::References references = tools::referencesOf(line.references, isCancel);
    const auto& items = references.items;
    if (references.duplicates > 0) {
        tools::say("left out " + std::to_string(references.duplicates) +
                   (references.duplicates == 1 ? " duplicate" : " duplicates"));
    }
    tools::Printer printer(line, items);
    if (!line.isLookup() && !line.isSure && !items.empty()) {
        tools::confirmCancellation(items);
    }
    tools::showProgress(0, items.size());
    if (line.isLookup()) {
        tools::lookUpInOrder(
            items.size(), line.jobs,
            [&](std::size_t index, const store::Fetcher& fetcher) {
                return tools::ask(line, items[index], fetcher);
            },
            [&](std::size_t index, const Report& report) { printer.print(index, report); });
    } else {
        cancelAll(line, items, printer);
    }
    return printer.finish();
}

ExitStatus parse(const CommandLine& line) {
    const auto kind =
        line.kind == "order" ? tools::RecordKind::Order : tools::RecordKind::Subscription;
    const std::string name = line.file == "-" ? "standard input" : line.file;
    const Report report = tools::reportOf(tools::contentOf(line.file), kind, name);
    tools::printAlone(report, line.format);
    return report.status;
}

ExitStatus run(const CommandLine& line) {
    switch (line.command) {
    case Command::None: // readCommandLine() has printed everything
        return ExitStatus::Record;
    case Command::Parse:
        return parse(line);
    default:
        return askAll(line);
    }
}

} // namespace

int main(int argumentCount, char** arguments) {
    platform::openClosedStreams();
    platform::logUncaughtFailures();
    std::signal(SIGPIPE, SIG_IGN);       // report a reader that has exited like a full disk
    std::ios::sync_with_stdio(false);    // otherwise, a failed read looks like the end of a list
    std::setlocale(LC_CTYPE, "C.UTF-8"); // for the width of characters
    try {
        return static_cast<int>(run(tools::readCommandLine(argumentCount, arguments)));
    } catch (const tools::UsageError& error) {
        tools::say(error.what());
        return static_cast<int>(ExitStatus::Usage);
    } catch (const tools::OutputError& error) {
        tools::say(error.what());
        return static_cast<int>(ExitStatus::Failure);
    }
}
