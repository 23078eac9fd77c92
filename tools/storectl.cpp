// The command line of the store client: asks the store service about subscriptions or orders, or
// parses answers from files, and prints JSON objects or tables.

#include "platform/Log.h"
#include "tools/CommandLine.h"
#include "tools/Output.h"
#include "tools/RecordJSON.h"

#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"
#include "store/Request.h"

#include <algorithm>
#include <chrono>
#include <csignal>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>

#include <unistd.h>

namespace {

using nlohmann::ordered_json;
using tools::Command;
using tools::CommandLine;
using tools::ExitStatus;

/// What is printed for one reference, and the exit status that it gives.
struct Report {
    ordered_json object;
    ExitStatus status;
};

template <class Record>
Report reportOf(const std::shared_ptr<Record>& record) {
    if (!record) {
        return {{{"result", "none"}, {"record", nullptr}}, ExitStatus::None};
    }
    return {{{"result", "record"}, {"record", tools::recordJSON(*record)}}, ExitStatus::Record};
}

/// What a parser makes of an answer. The two failures of parsers are results here.
Report parsed(const std::string& answer, bool isOrder) {
    const auto failed = [](const char* reason, const std::exception& failure) -> Report {
        return {{{"result", "failure"}, {"reason", reason}, {"message", failure.what()}},
                ExitStatus::Failure};
    };
    try {
        return isOrder ? reportOf(store::FastSpringOrderParser(answer).parseOrder())
                       : reportOf(store::FastSpringSubscriptionParser(answer).parseSubscription());
    } catch (const std::out_of_range& failure) {
        return failed("out_of_range", failure);
    } catch (const std::invalid_argument& failure) {
        return failed("invalid_argument", failure);
    }
}

store::Request requestOf(Command command) {
    return command == Command::Order    ? store::Request::GetOrder
           : command == Command::Cancel ? store::Request::DeleteSubscription
                                        : store::Request::GetSubscription;
}

Report unsent(const store::Answer& answer) {
    const std::string message = answer.address + " makes no address; nothing was sent";
    tools::say(message);
    return {{{"result", "invalid"}, {"message", message}}, ExitStatus::Usage};
}

Report unreachable(const store::Answer& answer, Command command) {
    std::string message = answer.failure;
    if (command == Command::Cancel) {
        message += "; it may have been canceled: look the subscription up before canceling again";
    }
    tools::say(answer.address + ": " + message);
    return {{{"result", "unreachable"}, {"record", nullptr}, {"message", message}},
            ExitStatus::Unreachable};
}

/// Asks the store service about one reference. With --raw the answer goes out as it came.
Report ask(const CommandLine& line, const std::string& reference) {
    const auto start = std::chrono::steady_clock::now();
    const store::Answer answer =
        store::ask(requestOf(line.command), reference, tools::limits(line.timeout));
    if (line.isVerbose) {
        const std::chrono::duration<double, std::milli> taken =
            std::chrono::steady_clock::now() - start;
        tools::say("GET " + answer.address + ": " +
                   (answer.data ? std::to_string(answer.data->size()) + " bytes" : "no answer") +
                   " after " + std::to_string(static_cast<int>(taken.count())) + " ms");
    }
    if (!answer.isSent) {
        return unsent(answer);
    }
    if (!answer.data) {
        return unreachable(answer, line.command);
    }
    if (line.isRaw) {
        tools::write(*answer.data);
        return {nullptr, ExitStatus::Record};
    }
    Report report = parsed(*answer.data, line.command == Command::Order);
    if (line.command == Command::Cancel && report.status != ExitStatus::Failure) {
        report.object = {{"result", report.status == ExitStatus::Record ? "confirmed" : "refused"}};
    }
    return report;
}

std::string contentOf(const std::string& file) {
    std::ifstream opened;
    if (file != "-") {
        opened.open(file, std::ios::binary);
    }
    std::istream& input = file == "-" ? std::cin : opened;
    std::ostringstream content;
    // An empty file is content too; inserting it fails without there being an error.
    if (input.peek() != std::istream::traits_type::eof()) {
        content << input.rdbuf();
    }
    if (input.bad() || (file != "-" && !opened.is_open()) || content.fail()) {
        throw tools::UsageError("cannot read " + file);
    }
    return content.str();
}

/// The references, with those that standard input lists, one a line, in the place of a "-".
std::vector<std::string> referencesOf(const CommandLine& line) {
    std::vector<std::string> references;
    for (const auto& reference : line.references) {
        if (reference != "-") {
            references.push_back(reference);
            continue;
        }
        for (std::string listed; std::getline(std::cin, listed);) {
            references.push_back(listed);
        }
    }
    return references;
}

bool isConfirmed(std::size_t count) {
    std::cerr << "storectl: cancel " << count << (count == 1 ? " subscription" : " subscriptions")
              << "? [y/N] " << std::flush;
    std::string reply;
    std::getline(std::cin, reply);
    return reply == "y" || reply == "Y" || reply == "yes";
}

/// Asks about each reference in turn; the worst of their statuses is the command's.
ExitStatus askAbout(const CommandLine& line) {
    const auto references = referencesOf(line);
    if (line.command == Command::Cancel && !line.isSure && isatty(STDIN_FILENO) != 0 &&
        !isConfirmed(references.size())) {
        throw tools::UsageError("nothing was canceled");
    }
    // A list has one object a line, also where it turns out to hold one reference only.
    const bool isList = references.size() != 1 || line.references.front() == "-";
    const bool showsProgress = references.size() > 1 && isatty(STDERR_FILENO) != 0;
    ExitStatus worst = ExitStatus::Record;
    for (std::size_t number = 0; number < references.size(); ++number) {
        if (showsProgress) {
            std::cerr << "\r" << number + 1 << " of " << references.size() << std::flush;
        }
        const Report report = ask(line, references[number]);
        worst = std::max(worst, report.status);
        if (isList && !report.object.is_null()) {
            ordered_json object{{"reference", references[number]}};
            object.update(report.object);
            tools::print(object, line.format, true);
        } else if (!report.object.is_null() && report.status != ExitStatus::Usage) {
            tools::print(report.object, line.format, false);
        }
    }
    if (showsProgress) {
        std::cerr << "\n";
    }
    return worst;
}

ExitStatus run(const CommandLine& line) {
    if (line.command == Command::None) {
        return ExitStatus::Record; // a question about itself, which was answered
    }
    if (line.command != Command::Parse) {
        return askAbout(line);
    }
    const Report report = parsed(contentOf(line.file), line.kind == "order");
    tools::print(report.object, line.format, false);
    return report.status;
}

} // namespace

int main(int argumentCount, char** words) {
    platform::logUncaughtFailures();
    std::signal(SIGPIPE, SIG_IGN); // a reader that has gone is an error like a full disk
    try {
        return static_cast<int>(run(tools::readCommandLine(argumentCount, words)));
    } catch (const tools::UsageError& error) {
        tools::say(error.what());
        return static_cast<int>(ExitStatus::Usage);
    } catch (const tools::OutputError& error) {
        tools::say(error.what());
        return static_cast<int>(ExitStatus::Failure);
    }
}
