#pragma once

#include "tools/CommandLine.h"
#include "tools/Report.h"
#include "tools/Table.h"

#include <cstddef>
#include <map>
#include <optional>
#include <string>
#include <vector>

namespace tools {

/// Prints the reports of one command in the order of the references, and sums them up.
class Printer {
  public:
    /// @param line, references outlive the printer.
    /// @throws UsageError if the command line names an unknown field.
    Printer(const CommandLine& line, const std::vector<std::string>& references);

    /// Prints the report of a reference, the progress, and the messages of the report.
    /// @throws OutputError
    void print(std::size_t index, const Report& report);

    /// Prints the rest of the table, and the summary of a cancellation.
    /// @return the worst exit status of the reports.
    /// @throws OutputError
    ExitStatus finish();

  private:
    void printObject(std::size_t index, const nlohmann::ordered_json& result);
    [[nodiscard]] std::string summary() const;

    const CommandLine& line_;
    const std::vector<std::string>& references_;
    bool isList_; // prints one object per line, even if the list contains only one reference
    std::optional<Table> table_;
    std::map<std::string, int> counts_; // of outcomes
    ExitStatus worst_ = ExitStatus::Record;
};

/// Prints the report of one answer by itself, and its messages.
/// @throws OutputError
void printAlone(const Report& report, Format format);

} // namespace tools
