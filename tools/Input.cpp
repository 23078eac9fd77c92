#include "tools/Input.h"

#include "base/Escape.h"
#include "store/ScriptURL.h"
#include "tools/CommandLine.h"

#include <algorithm>
#include <fstream>
#include <iostream>
#include <sstream>
#include <string_view>
#include <unordered_set>

namespace tools {
namespace {

constexpr const char* kTerminal = "/dev/tty";
constexpr std::size_t kNamedReferences = 3; // in the question

std::string storeHost() {
    std::string_view url = store::scriptURL();
    url.remove_prefix(url.find("//") + 2);
    return std::string(url.substr(0, url.find('/')));
}

std::string questionAbout(const std::vector<std::string>& references) {
    std::string text = "storectl: cancel " + std::to_string(references.size()) +
                       (references.size() == 1 ? " subscription" : " subscriptions") + " at " +
                       storeHost() + ":";
    const std::size_t named = std::min(references.size(), kNamedReferences);
    for (std::size_t index = 0; index < named; ++index) {
        text += (index > 0 ? ", " : " ") + base::escaped(references[index]);
    }
    if (references.size() > named) {
        text += " and " + std::to_string(references.size() - named) + " more";
    }
    return text + "? [y/N] ";
}

/// Appends the lines of a list, except blank ones.
void appendLines(std::vector<std::string>& references, const std::string& list) {
    std::istringstream lines(list);
    for (std::string line; std::getline(lines, line);) {
        if (line.ends_with('\r')) {
            line.pop_back();
        }
        if (line.find_first_not_of(" \t") != std::string::npos) {
            references.push_back(line);
        }
    }
}

} // namespace

std::string contentOf(const std::string& file) {
    std::ifstream opened;
    if (file != "-") {
        opened.open(file, std::ios::binary);
    }
    std::istream& input = file == "-" ? std::cin : opened;
    std::ostringstream content;
    // An empty file is content too. Inserting it fails without an error.
    if (input.peek() != std::istream::traits_type::eof()) {
        content << input.rdbuf();
    }
    if (input.bad() || (file != "-" && !opened.is_open()) || content.fail()) {
        throw UsageError("cannot read " + (file == "-" ? "standard input" : file));
    }
    return content.str();
}

References referencesOf(const std::vector<std::string>& arguments, bool skipsDuplicates) {
    std::vector<std::string> given;
    for (const auto& argument : arguments) {
        if (argument == "-") {
            appendLines(given, contentOf(argument));
        } else {
            given.push_back(argument);
        }
    }
    References references;
    std::unordered_set<std::string> known;
    for (auto& reference : given) {
        if (skipsDuplicates && !known.insert(reference).second) {
            ++references.duplicates;
        } else {
            references.items.push_back(std::move(reference));
        }
    }
    return references;
}

void confirmCancellation(const std::vector<std::string>& references) {
    std::ifstream input(kTerminal);
    std::ofstream output(kTerminal);
    if (!input || !output) {
        throw UsageError("cannot ask for confirmation without a terminal, so no request was sent. "
                         "Use --yes to cancel without confirmation");
    }
    output << questionAbout(references) << std::flush;
    std::string reply;
    std::getline(input, reply);
    if (reply != "y" && reply != "Y" && reply != "yes") {
        throw UsageError("nothing was canceled");
    }
}

} // namespace tools
