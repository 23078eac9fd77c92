#include "tools/Table.h"

#include "base/Escape.h"
#include "tools/Output.h"

#include <algorithm>
#include <cwchar>
#include <utility>

namespace tools {
namespace {

using nlohmann::ordered_json;

constexpr std::size_t kGap = 2; // between columns

/// Returns the width of a text on a terminal in columns. Needs a UTF-8 locale.
std::size_t widthOf(std::string_view text) {
    std::size_t width = 0;
    std::mbstate_t state{};
    while (!text.empty()) {
        wchar_t character = 0;
        const std::size_t length = std::mbrtowc(&character, text.data(), text.size(), &state);
        if (length == 0 || length > text.size()) { // an error
            return width + text.size();
        }
        width += static_cast<std::size_t>(std::max(wcwidth(character), 0));
        text.remove_prefix(length);
    }
    return width;
}

void pad(std::string& line, std::string_view cell, std::size_t width) {
    line.append(cell);
    line.append(width - widthOf(cell) + kGap, ' ');
}

ordered_json valueOf(const ordered_json& report, const std::string& name) {
    if (report.contains(name)) {
        return report[name];
    }
    try {
        return report.at("record").at(ordered_json::json_pointer("/" + name));
    } catch (const ordered_json::exception&) { // absent, or too large an index
        return {};
    }
}

} // namespace

Table::Table(std::vector<std::string> columns)
    : columns_(std::move(columns)), widths_(columns_.size()) {
    addRow(columns_);
}

void Table::reserve(std::size_t column, std::string_view text) {
    widths_[column] = std::max(widths_[column], widthOf(text));
}

void Table::add(const ordered_json& report) {
    Row row;
    for (const auto& column : columns_) {
        const ordered_json value = valueOf(report, column);
        row.push_back(value.is_null() ? "-" : plainText(value));
    }
    addRow(std::move(row));
}

void Table::addRow(Row row) {
    for (std::size_t column = 0; column < row.size(); ++column) {
        reserve(column, row[column]);
    }
    rows_.push_back(std::move(row));
}

std::string Table::takeLines() {
    std::string lines;
    for (const auto& row : rows_) {
        for (std::size_t column = 0; column < row.size(); ++column) {
            pad(lines, row[column], widths_[column]);
        }
        lines.erase(lines.find_last_not_of(' ') + 1);
        lines.push_back('\n');
    }
    rows_.clear();
    return lines;
}

std::string listOf(const ordered_json& report) {
    const auto record = report.find("record");
    const bool hasRecord = record != report.end() && record->is_object();
    const ordered_json values = (hasRecord ? *record : report).flatten();
    std::size_t width = 0;
    for (const auto& [path, value] : values.items()) {
        width = std::max(width, value.is_null() ? 0 : path.size() - 1);
    }
    std::string lines;
    for (const auto& [path, value] : values.items()) {
        if (!value.is_null()) {
            pad(lines, path.substr(1), width);
            lines += plainText(value) + "\n";
        }
    }
    return lines;
}

} // namespace tools
