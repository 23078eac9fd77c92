// Checks that a table from any input stays the same after writing and reading it.
#include "platform/StringsTable.h"

#include <cstdlib>
#include <string>

static std::string inQuotes(std::string_view text) {
    std::string result = "\"";
    for (const char character : text) {
        result += character == '"' || character == '\\' ? "\\" : "";
        result += character;
    }
    return result + "\"";
}

void fuzz(std::string_view input) {
    const auto table = platform::parseStringsTable(input, "input");
    std::string written;
    for (const auto& [key, value] : table) {
        written += inQuotes(key) + "=" + inQuotes(value) + ";";
    }
    if (platform::parseStringsTable(written, "written") != table) {
        std::abort();
    }
}
