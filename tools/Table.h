#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include <nlohmann/json.hpp>

namespace tools {

/// A table with a header, one row per reference, and columns that are aligned on a terminal.
class Table {
  public:
    /// @param columns names of keys of the reports, such as "result", or of their records, such as
    /// "status" or "orderItems/0/quantity".
    explicit Table(std::vector<std::string> columns);

    /// Makes a column at least as wide as a text.
    void reserve(std::size_t column, std::string_view text);
    /// Adds a row for a report. An absent value is "-".
    void add(const nlohmann::ordered_json& report);
    /// Returns the rows since the last call. The first call also returns the header.
    [[nodiscard]] std::string takeLines();

  private:
    using Row = std::vector<std::string>;
    void addRow(Row row);

    std::vector<std::string> columns_;
    std::vector<std::size_t> widths_;
    std::vector<Row> rows_;
};

/// Returns the values of a report's record, or of the report itself if its record is absent. Each
/// line contains a name and a value.
[[nodiscard]] std::string listOf(const nlohmann::ordered_json& report);

} // namespace tools
