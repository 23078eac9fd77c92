#include "tools/CommandLine.h"

#include "store/ScriptURL.h"
#include "tools/Completion.h"

#include <algorithm>
#include <chrono>
#include <map>
#include <numeric>
#include <string_view>

#include <CLI/CLI.hpp>

namespace tools {
namespace {

constexpr const char* kFooter =
    "Exit status: 0 record or confirmed, 1 none or refused, 2 wrong usage, 3 an answer that "
    "cannot\n"
    "be read or a result that cannot be written, 4 the store cannot be reached; of several\n"
    "references the worst. The proxy settings of the environment hold (http_proxy and others).";

/// How many letters have to be changed, added or taken away to make one word of the other.
std::size_t distance(std::string_view one, std::string_view other) {
    std::vector<std::size_t> row(other.size() + 1);
    std::iota(row.begin(), row.end(), std::size_t{0});
    for (const char letter : one) {
        std::size_t diagonal = row[0]++;
        for (std::size_t at = 0; at < other.size(); ++at) {
            const std::size_t changed = diagonal + (letter == other[at] ? 0 : 1);
            diagonal = row[at + 1];
            row[at + 1] = std::min({changed, row[at] + 1, diagonal + 1});
        }
    }
    return row.back();
}

/// "; did you mean …?" with the known word that is nearest, if one is near.
std::string suggestion(const std::string& word, const std::vector<std::string>& known) {
    const auto far = [&](const std::string& each) {
        return each.starts_with(word) ? 0 : distance(word, each);
    };
    const auto nearest =
        std::min_element(known.begin(), known.end(),
                         [&](const auto& one, const auto& other) { return far(one) < far(other); });
    const bool isNear = nearest != known.end() && far(*nearest) <= 1 + word.size() / 4;
    return isNear ? "; did you mean " + *nearest + "?" : "";
}

std::vector<std::string> commandsOf(const CLI::App& app) {
    std::vector<std::string> names;
    for (const auto* command : app.get_subcommands({})) {
        names.push_back(command->get_name());
    }
    return names;
}

/// One line for what CLI11 did not take.
std::string explanation(const CLI::App& app, const CLI::ParseError& error) {
    const auto chosen = app.get_subcommands();
    auto left = chosen.empty() ? app.remaining() : chosen.front()->remaining();
    if (left.empty()) {
        left = app.remaining();
    }
    const auto isOption = [](const std::string& word) { return word.size() > 1 && word[0] == '-'; };
    const auto option = std::find_if(left.begin(), left.end(), isOption);
    if (option != left.end()) {
        const auto name = option->substr(0, option->find('='));
        return "there is no option " + name +
               suggestion(name, optionsOf(chosen.empty() ? app : *chosen.front()));
    }
    if (chosen.empty()) {
        return left.empty()
                   ? "a command is needed: subscription, cancel, order, parse or completion"
                   : "there is no command " + left.front() +
                         suggestion(left.front(), commandsOf(app));
    }
    if (!left.empty()) {
        return chosen.front()->get_name() + " does not take " + left.front();
    }
    return chosen.front()->get_name() + ": " + error.what();
}

/// One of a few words.
CLI::Validator oneOf(const std::vector<std::string>& words) {
    const std::string list = CLI::detail::join(words, "|");
    return {[words, list](std::string& word) {
                return std::find(words.begin(), words.end(), word) != words.end()
                           ? std::string()
                           : word + " is not one of " + list + suggestion(word, words);
            },
            list};
}

CLI::Validator seconds() {
    return {[](std::string& text) {
                double number = 0;
                return CLI::detail::lexical_cast(text, number) && number >= 0.001 && number <= 3600
                           ? std::string()
                           : text + " is no number of seconds from 0.001 to 3600";
            },
            "SECONDS"};
}

class Declaration {
  public:
    Declaration(CLI::App& app, CommandLine& line) : app_(app), line_(line) {
        app.require_subcommand(1);
        app.set_help_flag("-h,--help", "Print what the command, or one of its commands, takes");
        app.set_version_flag("--version", "storectl " HELPER_VERSION, "Print the version");
        app.footer(kFooter);
        app.option_defaults()->always_capture_default(false);
        addFormat(app);
        addRequestOptions(app);
    }

    void addRequest(Command command, const char* name, const char* help) {
        CLI::App& request = add(command, name, help);
        request
            .add_option("REF", line_.references,
                        "References at the store service; - for a list on standard input")
            ->required();
        addRequestOptions(request);
        if (command == Command::Cancel) {
            request.add_flag("-y,--yes", line_.isSure, "Do not ask before, on a terminal");
        }
    }

    void addParse() {
        CLI::App& parse = add(Command::Parse, "parse", "Parse an answer of the store from a file");
        parse.add_option("KIND", line_.kind, "What the answer describes")
            ->required()
            ->check(oneOf({"subscription", "order"}))
            ->option_text("subscription|order");
        parse.add_option("FILE", line_.file, "The file; - for standard input")->required();
    }

    void addCompletion(std::string& shell) {
        app_.add_subcommand("completion", "Print the completion for a shell")
            ->add_option("SHELL", shell, "The shell")
            ->required()
            ->check(oneOf({"bash", "zsh", "fish"}))
            ->option_text("bash|zsh|fish");
    }

  private:
    CLI::App& add(Command command, const char* name, const char* help) {
        CLI::App* added = app_.add_subcommand(name, help);
        added->set_help_flag("-h,--help", "Print what the command takes");
        added->callback([this, command] { line_.command = command; });
        addFormat(*added);
        return *added;
    }

    void addFormat(CLI::App& app) {
        app.add_option_function<std::string>(
               "--format",
               [this](const std::string& word) {
                   line_.format = word == "table" ? Format::Table : Format::JSON;
               },
               "How the results are printed")
            ->check(oneOf({"json", "table"}))
            ->option_text("json|table");
    }

    // Before the command as well as after it.
    void addRequestOptions(CLI::App& app) {
        app.add_option("--store", line_.store,
                       "The store identifier, by default " HELPER_STORE_ID "; it is never sent")
            ->type_name("ID");
        app.add_option("--timeout", line_.timeout, "How long one request may take; by default 30")
            ->check(seconds())
            ->option_text("SECONDS");
        app.add_flag("--raw", line_.isRaw, "Print the store's own answer");
        app.add_flag("-v,--verbose", line_.isVerbose,
                     "Tell of each request and its time on standard error");
    }

    CLI::App& app_;
    CommandLine& line_;
};

} // namespace

CommandLine readCommandLine(int argumentCount, const char* const* words) {
    CLI::App app("Asks the store service at " + std::string(store::scriptURL()) +
                     " about subscriptions and orders.\nPrints one JSON object, or one a line for "
                     "several references, or tables.",
                 "storectl");
    CommandLine line;
    std::string shell;
    Declaration declaration(app, line);
    declaration.addRequest(Command::Subscription, "subscription", "Print subscriptions");
    declaration.addRequest(Command::Cancel, "cancel", "Cancel subscriptions");
    declaration.addRequest(Command::Order, "order", "Print orders");
    declaration.addParse();
    declaration.addCompletion(shell);
    try {
        app.parse(argumentCount, words);
    } catch (const CLI::ParseError& error) {
        if (error.get_exit_code() != 0) {
            throw UsageError(explanation(app, error));
        }
        app.exit(error); // which prints the help or the version
        line.command = Command::None;
    }
    if (!shell.empty()) {
        write(completionFor(shell, app));
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
