#include "tools/CommandLine.h"

#include "Brand.h"
#include "store/ScriptURL.h"
#include "tools/Completion.h"
#include "tools/Suggestion.h"
#include "tools/WordReader.h"

#include <algorithm>
#include <chrono>
#include <iterator>
#include <sstream>
#include <string_view>
#include <utility>

#include <CLI/CLI.hpp>

namespace tools {
namespace {

constexpr const char* kReferences = "REF";
constexpr const char* kFooter =
    "Numbers are whole units as the parser reads them (119.95 gives 119), and times are UTC.\n"
    "Exit status: 0 record or confirmed, 1 none or refused, 2 wrong usage, 3 a failure (an answer\n"
    "that is not the store's, or a result that cannot be written), 4 store unreachable. The worst\n"
    "of several references counts. Proxy settings of the environment apply (http_proxy and "
    "others).";

/// Returns a line that explains why CLI11 rejected the command line.
std::string explanation(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    if (chosen.empty()) {
        std::vector<std::string> names;
        for (const auto* command : visibleCommands(app)) {
            names.push_back(command->get_name());
        }
        return "a command is missing: " + CLI::detail::join(names, ", ");
    }
    const auto left = chosen.front()->remaining();
    return chosen.front()->get_name() +
           (left.empty() ? std::string(": ") + error.what() : " does not take " + left.front());
}

/// Restricts an option or an argument to a few choices.
void setChoices(CLI::Option* option, const std::vector<std::string>& choices) {
    const std::string list = CLI::detail::join(choices, "|");
    const auto check = [choices, list](const std::string& word) {
        return std::find(choices.begin(), choices.end(), word) != choices.end()
                   ? std::string()
                   : word + " is not one of " + list + suggestion(word, choices);
    };
    option->check(check)->type_name(list)->option_text(list);
}

std::string checkSeconds(const std::string& text) {
    double number = 0;
    return CLI::detail::lexical_cast(text, number) && number >= 0.001 && number <= 3600
               ? ""
               : text + " is not a number of seconds from 0.001 to 3600";
}

class Declaration {
  public:
    Declaration(CLI::App& app, CommandLine& line) : app_(app), line_(line) {
        app.require_subcommand(1);
        app.set_help_flag("-h,--help", "Print the usage, or with a command the usage of that");
        app.set_version_flag("--version", "storectl " PROJECT_VERSION, "Print the version");
        app.footer(kFooter);
    }

    void addLookup(Command command, const char* name, const char* help) {
        CLI::App& lookup = addRequest(command, name, help);
        lookup.add_option("--jobs", line_.jobs, "Lookups at the same time, 1 to 32, by default 1")
            ->check(CLI::Range(1, 32).description(""))
            ->type_name("N");
        lookup
            .add_option_function<std::string>(
                "--fields",
                [this](const std::string& names) { line_.fields = CLI::detail::split(names, ','); },
                "Print a table with these columns, such as reference,status,endDate")
            ->type_name("NAMES");
    }

    void addCancel() {
        CLI::App& cancel = addRequest(Command::Cancel, "cancel", "Cancel subscriptions");
        cancel.add_flag("-y,--yes", line_.isSure, "Cancel without asking on the terminal");
        cancel.add_flag("--dry-run", line_.isDryRun, "Only look up what would be canceled");
    }

    void addParse() {
        CLI::App& parse = add(Command::Parse, "parse", "Parse an answer of the store from a file");
        setChoices(
            parse.add_option("KIND", line_.kind, "The kind of record in the answer")->required(),
            {"subscription", "order"});
        parse.add_option("FILE", line_.file, "The file, or - for standard input")
            ->required()
            ->option_text(" ");
    }

    void addCompletion(std::string& shell, std::vector<std::string>& arguments) {
        CLI::App* completion =
            app_.add_subcommand("completion", "Print the completion script for a shell");
        setChoices(completion->add_option("SHELL", shell, "The shell")->required(),
                   {std::begin(kShells), std::end(kShells)});
        // The completion scripts call this command.
        app_.add_subcommand("complete", "")->group("")->add_option(kReferences, arguments, "");
    }

  private:
    CLI::App& add(Command command, const char* name, const char* help) {
        CLI::App* added = app_.add_subcommand(name, help);
        added->set_help_flag("-h,--help", "Print the usage of the command");
        added->callback([this, command] { line_.command = command; });
        CLI::Option* format = added->add_option_function<std::string>(
            "--format",
            [this](const std::string& word) {
                line_.format = word == "table" ? Format::Table : Format::JSON;
            },
            "The format of the results, by default json");
        setChoices(format, {"json", "table"});
        return *added;
    }

    CLI::App& addRequest(Command command, const char* name, const char* help) {
        CLI::App& request = add(command, name, help);
        // Only for the help: the references never reach CLI11, which splits and drops some of them.
        request
            .add_option(kReferences, line_.references,
                        "References at the store service, or - for a list on standard input")
            ->option_text("...");
        request
            .add_option("--store", line_.store,
                        "The store identifier, by default " HELPER_STORE_ID ". It is never sent")
            ->type_name("ID");
        request.add_option("--timeout", line_.timeout, "The limit for one request, by default 30")
            ->check(checkSeconds)
            ->type_name("SECONDS");
        request.add_flag("--raw", line_.isRaw, "Print only the store's own answers");
        request.add_flag("-v,--verbose", line_.isVerbose,
                         "Report each request, its HTTP status and its time on standard error");
        return request;
    }

    CLI::App& app_;
    CommandLine& line_;
};

/// @throws UsageError if an option or a reference is missing or conflicts with another.
void checkCombination(const CLI::App& command, const CommandLine& line) {
    const bool isJSON = line.format == Format::JSON;
    const std::pair<bool, const char*> faults[] = {
        {line.references.empty(), ": REF is required"},
        {line.isRaw && (!isJSON || !line.fields.empty()), ": --raw excludes tables"},
        {!line.fields.empty() && isJSON && command.count("--format") > 0,
         ": --fields excludes --format json"},
    };
    for (const auto& [isFault, message] : faults) {
        if (isFault) {
            throw UsageError(command.get_name() + message);
        }
    }
}

/// Parses the command, its options and its arguments other than references.
/// @return false if it printed the help or the version.
bool parse(CLI::App& app, std::vector<std::string> arguments) {
    std::reverse(arguments.begin(), arguments.end()); // the order that CLI11 expects
    try {
        app.parse(std::move(arguments));
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) {
            throw UsageError(explanation(app, error));
        }
        std::ostringstream text;
        app.exit(error, text);
        write(text.str());
        return false;
    }
    return true;
}

} // namespace

CommandLine readCommandLine(int argumentCount, const char* const* arguments) {
    CLI::App app(
        "Looks up subscriptions and orders, and cancels subscriptions, at the store service\n" +
            std::string(store::scriptURL()) +
            "\nPrints one JSON object, or one per line for several references, or a table.",
        "storectl");
    CommandLine line;
    std::string shell;
    std::vector<std::string> unused;
    Declaration declaration(app, line);
    declaration.addLookup(Command::Subscription, "subscription", "Print subscriptions");
    declaration.addCancel();
    declaration.addLookup(Command::Order, "order", "Print orders");
    declaration.addParse();
    declaration.addCompletion(shell, unused);
    const std::span all(arguments, static_cast<std::size_t>(argumentCount));
    auto parts = divided(app, kReferences, all.subspan(std::min<std::size_t>(1, all.size())));
    if (!parse(app, std::move(parts.others))) {
        return {};
    }
    line.references = std::move(parts.references);
    if (!shell.empty()) {
        write(completionScript(shell));
    } else if (line.command == Command::None) {
        write(completions(app, line.references));
    } else if (line.command != Command::Parse) {
        checkCombination(*app.get_subcommands().front(), line);
        line.format = line.fields.empty() ? line.format : Format::Table;
    }
    return line;
}

base::FetchLimits limits(double timeout) {
    base::FetchLimits limits;
    if (timeout > 0) {
        limits.whole = std::chrono::milliseconds(static_cast<int>(timeout * 1000));
        limits.connect = std::min(limits.connect, limits.whole);
    }
    return limits;
}

} // namespace tools
