#pragma once

#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace tools {

/// How results are printed.
enum class Format { JSON, Table };

/// What was to be printed could not be: a full disk, or a reader that has gone.
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Writes a text to standard output, all of it at once.
/// @throws OutputError
void write(std::string_view text);

/// Prints an object: as JSON, on one line or on several, or as a table, one line for each value
/// that is there, its name, such as "orderItems/0/quantity", before it.
/// @throws OutputError
void print(const nlohmann::ordered_json& object, Format format, bool onOneLine);

/// Writes "storectl: " and a message, its control characters escaped, to standard error.
void say(std::string_view message);

} // namespace tools
