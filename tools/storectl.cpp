// The command line of the store client: asks the store service about a subscription or an order,
// or parses an answer from a file, and prints one JSON object or a table.

#include "base/Fetch.h"
#include "base/URL.h"
#include "platform/Log.h"
#include "store/FastSpringOrderParser.h"
#include "store/FastSpringSubscriptionParser.h"
#include "store/FastSpringUtilities.h"
#include "store/ScriptURL.h"
#include "tools/RecordJSON.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iostream>
#include <iterator>
#include <map>
#include <sstream>
#include <stdexcept>
#include <string>

#include <CLI/CLI.hpp>

namespace {

using nlohmann::ordered_json;

enum ExitStatus : int { kRecord = 0, kNone = 1, kUsage = 2, kFailure = 3 };

/// How the result is printed.
enum class Format { JSON, Table };
Format format = Format::JSON;

/// Answers hold any text; what is no UTF-8 must not end the command.
std::string dumped(const ordered_json& value, int indent) {
    return value.dump(indent, ' ', false, ordered_json::error_handler_t::replace);
}

/// One line for each value that is there, its name, such as "orderItems/0/quantity", before it.
/// Texts stay escaped: a terminal acts on some control characters.
void printTable(const ordered_json& object) {
    const auto values = object.flatten();
    std::size_t width = 0;
    for (const auto& [name, value] : values.items()) {
        width = std::max(width, value.is_null() ? 0 : name.size());
    }
    for (const auto& [name, value] : values.items()) {
        if (!value.is_null()) {
            const std::string text = dumped(value, -1);
            std::cout << name.substr(1) << std::string(width - name.size() + 2, ' ')
                      << (value.is_string() ? text.substr(1, text.size() - 2) : text) << "\n";
        }
    }
}

int print(const ordered_json& object, ExitStatus status) {
    if (format == Format::Table) {
        printTable(object.contains("record") && object["record"].is_object() ? object["record"]
                                                                             : object);
    } else {
        std::cout << dumped(object, 2) << "\n";
    }
    std::cout.flush();
    return std::cout ? status : kFailure;
}

/// Tells a store that cannot be reached from one that said no, which a request does not.
int explained(int status, const char* consequence) {
    const auto script = base::URL::make(store::scriptURL());
    if (status == kNone && (!script || !base::fetch(*script))) {
        std::cerr << "storectl: nothing answers at " << store::scriptURL() << consequence << "\n";
    }
    return status;
}

template <class Record>
int printRecord(const std::shared_ptr<Record>& record) {
    return record ? print({{"result", "record"}, {"record", tools::recordJSON(*record)}}, kRecord)
                  : print({{"result", "none"}, {"record", nullptr}}, kNone);
}

int printCancellation(bool confirmed) {
    return print({{"result", confirmed ? "confirmed" : "refused"}}, confirmed ? kRecord : kNone);
}

int printFailure(const char* reason, const std::exception& failure) {
    return print({{"result", "failure"}, {"reason", reason}, {"message", failure.what()}},
                 kFailure);
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
        throw CLI::FileError("cannot read " + file, CLI::ExitCodes::FileError);
    }
    return content.str();
}

/// What the command line said.
struct Arguments {
    store::Text store;
    std::string reference;
    std::string kind;
    std::string file;
};

/// Declares the commands; each sets `action` to what is to be done.
void declareCommands(CLI::App& command, Arguments& arguments, std::function<int()>& action) {
    command.require_subcommand(1);
    command.option_defaults()->always_capture_default(false);
    const auto add = [&](const char* name, const char* help, std::function<int()> run) {
        CLI::App* sub = command.add_subcommand(name, help);
        sub->add_option("--format", format, "How the result is printed")
            ->transform(CLI::CheckedTransformer(
                std::map<std::string, Format>{{"json", Format::JSON}, {"table", Format::Table}}))
            ->option_text("json|table");
        sub->callback([&action, run = std::move(run)] { action = run; });
        return sub;
    };
    const auto addRequest = [&](const char* name, const char* help, std::function<int()> run) {
        CLI::App* sub = add(name, help, std::move(run));
        sub->add_option("REF", arguments.reference, "The reference at the store service")
            ->required();
        return sub->add_option("--store", arguments.store,
                               "The store identifier; it is checked for presence and never sent");
    };
    addRequest("subscription", "Print a subscription", [&] {
        return explained(printRecord(store::FastSpringUtilities::subscriptionForStore(
                             arguments.store, arguments.reference)),
                         "");
    });
    addRequest("cancel", "Cancel a subscription", [&] {
        return explained(printCancellation(store::FastSpringUtilities::cancelSubscriptionForStore(
                             arguments.store, arguments.reference)),
                         "; look the subscription up before you cancel it again");
    })->required();
    addRequest("order", "Print an order", [&] {
        return explained(printRecord(store::FastSpringUtilities::orderForStore(
                             arguments.store, arguments.reference)),
                         "");
    })->required();

    CLI::App* parse = add("parse", "Parse an answer of the store service from a file", [&] {
        const std::string answer = contentOf(arguments.file);
        return arguments.kind == "order"
                   ? printRecord(store::FastSpringOrderParser(answer).parseOrder())
                   : printRecord(store::FastSpringSubscriptionParser(answer).parseSubscription());
    });
    parse->add_option("KIND", arguments.kind, "What the answer describes")
        ->required()
        ->check(CLI::IsMember({"subscription", "order"}));
    parse->add_option("FILE", arguments.file, "The file, or - for standard input")->required();
}

int run(int argumentCount, char** words) {
    CLI::App command("Asks the store service at " + std::string(store::scriptURL()) +
                     " about subscriptions and orders.\nPrints one JSON object, or a table. Exit "
                     "status: 0 record or "
                     "confirmed, 1 none or refused, 2 wrong usage,\n3 the answer cannot be read.");
    Arguments arguments;
    std::function<int()> action;
    declareCommands(command, arguments, action);
    try {
        command.parse(argumentCount, words);
        return action();
    } catch (const CLI::ParseError& error) {
        return command.exit(error) == 0 ? kRecord : kUsage;
    }
}

} // namespace

int main(int argumentCount, char** words) {
    platform::logUncaughtFailures();
    try {
        return run(argumentCount, words);
    } catch (const std::out_of_range& failure) {
        return printFailure("out_of_range", failure);
    } catch (const std::invalid_argument& failure) {
        return printFailure("invalid_argument", failure);
    }
}
