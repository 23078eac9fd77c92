#include "tools/Output.h"

#include "base/Escape.h"

#include <cerrno>
#include <cstdio>
#include <cstring>

#include <unistd.h>

namespace tools {
namespace {

using nlohmann::ordered_json;

std::size_t progressWidth = 0; // of the line on the terminal

void clearProgress() {
    if (progressWidth > 0) {
        std::fprintf(stderr, "\r%*s\r", static_cast<int>(progressWidth), "");
        progressWidth = 0;
    }
}

/// Returns a value as JSON. Answers contain any text, and invalid UTF-8 must not end the command.
std::string textOf(const ordered_json& value, int indent) {
    const std::string text = value.dump(indent, ' ', false, ordered_json::error_handler_t::replace);
    return base::escaped(text, base::EscapeForm::JSON);
}

} // namespace

void write(std::string_view text) {
    clearProgress();
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size() ||
        std::fflush(stdout) != 0) {
        throw OutputError(std::string("cannot write the result: ") + std::strerror(errno));
    }
}

void printJSON(const ordered_json& object, bool onOneLine) {
    write(textOf(object, onOneLine ? -1 : 2) + "\n");
}

std::string plainText(const ordered_json& value) {
    return value.is_string() ? base::escaped(value.get_ref<const std::string&>())
                             : textOf(value, -1);
}

void say(std::string_view message) {
    clearProgress();
    std::fprintf(stderr, "storectl: %s\n", base::escaped(message).c_str());
}

void showProgress(std::size_t done, std::size_t count) {
    static const bool isTerminal = isatty(STDERR_FILENO) != 0;
    if (isTerminal && count > 1 && done < count) {
        clearProgress();
        const std::string text = std::to_string(done) + " of " + std::to_string(count);
        std::fputs(text.c_str(), stderr);
        progressWidth = text.size();
    }
}

} // namespace tools
