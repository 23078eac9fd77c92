#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

namespace tools {

/// How results are printed.
enum class Format { JSON, Table };

/// A result could not be written: a full disk, or a reader that has exited.
struct OutputError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Writes a text to standard output and flushes it.
/// @throws OutputError
void write(std::string_view text);

/// Prints an object as JSON on one line or on several. Control characters are escaped.
/// @throws OutputError
void printJSON(const nlohmann::ordered_json& object, bool onOneLine);

/// Returns a value as one line of text for people, its control characters escaped.
[[nodiscard]] std::string plainText(const nlohmann::ordered_json& value);

/// Writes "storectl: " and a message, its control characters escaped, to standard error.
void say(std::string_view message);

/// Shows how many of several references are done, on one line that the next output replaces. Shows
/// it only if standard error is a terminal and references are left.
void showProgress(std::size_t done, std::size_t count);

} // namespace tools
