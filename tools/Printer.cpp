#include "tools/Printer.h"

#include "base/Escape.h"
#include "tools/Output.h"
#include "tools/RecordJSON.h"
#include "tools/Suggestion.h"

#include <algorithm>
#include <string_view>

namespace tools {
namespace {

using nlohmann::ordered_json;

/// Returns the names of all values that a row can show.
std::vector<std::string> fieldsOf(Command command) {
    std::vector<std::string> names{"reference",      "result", "httpStatus",
                                   "isParsingError", "reason", "message"};
    const ordered_json record = command == Command::Order
                                    ? recordJSON(store::FastSpringOrder())
                                    : recordJSON(store::FastSpringSubscription());
    for (const auto& [name, value] : record.items()) {
        names.push_back(name);
    }
    return names;
}

/// @throws UsageError if a chosen field is unknown.
std::vector<std::string> columnsOf(const CommandLine& line) {
    if (!line.isLookup()) {
        return {"reference", "result"};
    }
    if (line.fields.empty()) {
        return line.command == Command::Order
                   ? std::vector<std::string>{"reference", "result",   "status",
                                              "total",     "currency", "customerEmail"}
                   : std::vector<std::string>{"reference",   "result",  "status",
                                              "productName", "endDate", "customerEmail"};
    }
    const auto known = fieldsOf(line.command);
    for (const auto& field : line.fields) {
        const std::string name = field.substr(0, field.find('/'));
        if (std::find(known.begin(), known.end(), name) == known.end() ||
            field.find('~') != std::string::npos) {
            throw UsageError("unknown field " + field + suggestion(name, known));
        }
    }
    return line.fields;
}

/// Returns the name of a result in the summary.
std::string outcomeOf(const std::string& result) {
    return result == "record"                               ? "found"
           : result == "none"                               ? "not found"
           : result == "unreachable" || result == "failure" ? "unknown"
                                                            : result;
}

} // namespace

Printer::Printer(const CommandLine& line, const std::vector<std::string>& references)
    : line_(line), references_(references),
      isList_(line.references.size() != 1 || line.references.front() == "-") {
    if (line.format == Format::Table && (isList_ || !line.fields.empty())) {
        table_.emplace(columnsOf(line));
        // Set the column's width first, because a cancellation prints its rows one by one.
        for (std::size_t index = 0; index < references.size() && !line.isLookup(); ++index) {
            table_->reserve(0, base::escaped(references[index]));
        }
    }
}

void Printer::print(std::size_t index, const Report& report) {
    worst_ = std::max(worst_, report.status);
    ++counts_[outcomeOf(report.object["result"])];
    for (const auto& message : report.messages) {
        say(message);
    }
    if (line_.isRaw) {
        write(report.raw);
    } else {
        printObject(index, report.object);
    }
    showProgress(index + 1, references_.size());
}

void Printer::printObject(std::size_t index, const ordered_json& result) {
    if (!isList_ && !table_) {
        printAlone({result, worst_, {}, {}}, line_.format);
        return;
    }
    ordered_json object{{"reference", references_[index]}};
    object.update(result);
    if (!table_) {
        printJSON(object, true);
        return;
    }
    table_->add(object);
    if (!line_.isLookup()) { // print the row now, in case the command is killed later
        write(table_->takeLines());
    }
}

ExitStatus Printer::finish() {
    if (table_) {
        write(table_->takeLines());
    }
    if (line_.command == Command::Cancel) {
        say(summary());
    }
    return worst_;
}

std::string Printer::summary() const {
    std::string text;
    for (const auto* outcome :
         {"confirmed", "refused", "found", "not found", "unknown", "invalid"}) {
        if (const auto found = counts_.find(outcome); found != counts_.end()) {
            text += (text.empty() ? "" : ", ") + std::to_string(found->second) + " " + outcome;
        }
    }
    return (text.empty() ? "the list is empty" : text) +
           (line_.isDryRun ? ". Nothing was canceled" : "");
}

void printAlone(const Report& report, Format format) {
    for (const auto& message : report.messages) {
        say(message);
    }
    if (report.status == ExitStatus::Usage) {
        return; // a wrong reference sends no request
    }
    if (format == Format::Table) {
        write(listOf(report.object));
    } else {
        printJSON(report.object, false);
    }
}

} // namespace tools
