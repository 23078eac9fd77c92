#include "tools/Output.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>

namespace tools {
namespace {

using nlohmann::ordered_json;

/// Answers hold any text; what is no UTF-8 must not end the command.
std::string dumped(const ordered_json& value, int indent) {
    return value.dump(indent, ' ', false, ordered_json::error_handler_t::replace);
}

/// Texts stay escaped: a terminal acts on some control characters.
std::string escaped(const ordered_json& value) {
    const std::string text = dumped(value, -1);
    return value.is_string() ? text.substr(1, text.size() - 2) : text;
}

std::string tableOf(const ordered_json& object) {
    const auto values = object.flatten();
    std::size_t width = 0;
    for (const auto& [name, value] : values.items()) {
        width = std::max(width, value.is_null() ? 0 : name.size());
    }
    std::string table;
    for (const auto& [name, value] : values.items()) {
        if (!value.is_null()) {
            table +=
                name.substr(1) + std::string(width - name.size() + 2, ' ') + escaped(value) + "\n";
        }
    }
    return table;
}

} // namespace

void write(std::string_view text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        throw OutputError(std::string("the result cannot be written: ") + std::strerror(errno));
    }
}

void print(const ordered_json& object, Format format, bool onOneLine) {
    if (format == Format::JSON) {
        write(dumped(object, onOneLine ? -1 : 2) + "\n");
    } else if (onOneLine || !object.contains("record") || !object["record"].is_object()) {
        write(tableOf(object) + (onOneLine ? "\n" : ""));
    } else {
        write(tableOf(object["record"]));
    }
}

void say(std::string_view message) {
    std::fprintf(stderr, "storectl: %s\n", escaped(ordered_json(message)).c_str());
}

} // namespace tools
