#include "platform/StringsTable.h"

#include "base/Iconv.h"
#include "platform/File.h"
#include "platform/Log.h"

#include <algorithm>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace platform {
namespace {

constexpr std::size_t kLargestTable = std::size_t{1} << 20U;

/// A syntax error. Its text names the expected token.
struct SyntaxError : std::runtime_error {
    using std::runtime_error::runtime_error;
};

/// Returns the text in UTF-8.
std::string decoded(std::string_view bytes) {
    const char* encoding = "UTF-8";
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) {
        encoding = bytes.front() == '\xff' ? "UTF-16LE" : "UTF-16BE";
        bytes.remove_prefix(2);
    } else if (bytes.starts_with("\xef\xbb\xbf")) {
        bytes.remove_prefix(3);
    }
    auto text = base::Iconv("UTF-8", encoding).convert(bytes);
    if (!text) {
        throw SyntaxError(std::string("text in ") + encoding);
    }
    return *std::move(text);
}

void appendInUTF8(std::string& text, char32_t character) {
    const auto append = [&](char32_t lead, unsigned shift) {
        text.push_back(static_cast<char>(lead | character >> shift));
        while (shift > 0) {
            shift -= 6;
            text.push_back(static_cast<char>(0x80U | (character >> shift & 0x3fU)));
        }
    };
    if (character < 0x80) {
        append(0, 0);
    } else if (character < 0x800) {
        append(0xc0, 6);
    } else if (character < 0x10000) {
        append(0xe0, 12);
    } else {
        append(0xf0, 18);
    }
}

bool isDigit(char character, unsigned base) {
    return (character >= '0' && character < static_cast<char>('0' + std::min(base, 10U))) ||
           (base == 16 &&
            ((character >= 'a' && character <= 'f') || (character >= 'A' && character <= 'F')));
}

unsigned digitValue(char character) {
    return character <= '9' ? static_cast<unsigned>(character - '0')
                            : (static_cast<unsigned>(character) | 0x20U) - 'a' + 10U;
}

class Parser {
  public:
    explicit Parser(std::string_view text) : text_(text) {}

    StringsTable table() {
        StringsTable table;
        for (skipBlanks(); at_ < text_.size(); skipBlanks()) {
            const std::string key = token("a key");
            std::string value = key;
            if (skipBlanks(); take("=")) {
                skipBlanks();
                value = token("a value");
                skipBlanks();
            }
            if (!take(";")) {
                throw SyntaxError("';'");
            }
            table.emplace(key, value);
        }
        return table;
    }

    [[nodiscard]] auto line() const {
        return 1 +
               std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), '\n');
    }

  private:
    bool take(std::string_view expected) {
        const bool there = text_.substr(at_).starts_with(expected);
        at_ += there ? expected.size() : 0;
        return there;
    }

    void skipBlanks() {
        constexpr std::string_view kBlanks = " \t\r\n\f\v";
        while (at_ < text_.size()) {
            if (take("/*")) {
                skipPast("*/", "the end of the comment");
            } else if (take("//")) {
                at_ = std::min(text_.find('\n', at_), text_.size());
            } else if (kBlanks.find(text_[at_]) != std::string_view::npos) {
                ++at_;
            } else if (!take("\u2028") && !take("\u2029")) {
                return;
            }
        }
    }

    void skipPast(std::string_view end, const char* expected) {
        const auto found = text_.find(end, at_);
        if (found == std::string_view::npos) {
            throw SyntaxError(expected);
        }
        at_ = found + end.size();
    }

    std::string token(const char* expected) { return take("\"") ? quoted() : bare(expected); }

    std::string bare(const char* expected) {
        const auto start = at_;
        const auto isBare = [](char character) {
            const char lower = static_cast<char>(character | 0x20);
            return isDigit(character, 10) || (lower >= 'a' && lower <= 'z') ||
                   std::string_view("_$/:.-").find(character) != std::string_view::npos;
        };
        while (at_ < text_.size() && isBare(text_[at_])) {
            ++at_;
        }
        if (at_ == start) {
            throw SyntaxError(expected);
        }
        return std::string(text_.substr(start, at_ - start));
    }

    std::string quoted() {
        std::string value;
        while (!take("\"")) {
            if (at_ == text_.size()) {
                throw SyntaxError("'\"'");
            }
            if (take("\\")) {
                appendEscape(value);
            } else {
                value.push_back(text_[at_++]);
            }
        }
        return value;
    }

    void appendEscape(std::string& value) {
        constexpr std::string_view kLetters = "ntrfbav";
        constexpr std::string_view kMeanings = "\n\t\r\f\b\a\v";
        if (at_ == text_.size()) {
            throw SyntaxError("an escaped character");
        }
        const char next = text_[at_];
        if (isDigit(next, 8)) {
            appendInUTF8(value, number(8, 1, 3));
        } else if (take("U") || take("u")) {
            appendInUTF8(value, character(number(16, 4, 4)));
        } else {
            const auto letter = kLetters.find(next);
            value.push_back(letter == std::string_view::npos ? next : kMeanings[letter]);
            ++at_;
        }
    }

    /// Returns the character of a UTF-16 code unit. Reads its second unit from the next escape.
    char32_t character(char32_t unit) {
        const bool isHigh = unit >= 0xd800 && unit < 0xdc00;
        const char32_t low = isHigh && (take("\\U") || take("\\u")) ? number(16, 4, 4) : 0;
        if ((unit >= 0xd800 && unit <= 0xdfff) && (low < 0xdc00 || low > 0xdfff)) {
            throw SyntaxError("whole surrogate pairs");
        }
        return isHigh ? 0x10000 + ((unit - 0xd800) << 10U) + (low - 0xdc00) : unit;
    }

    char32_t number(unsigned base, int least, int most) {
        unsigned value = 0;
        int count = 0;
        for (; count < most && at_ < text_.size() && isDigit(text_[at_], base); ++count) {
            value = value * base + digitValue(text_[at_++]);
        }
        if (count < least) {
            throw SyntaxError("four hexadecimal digits");
        }
        return value & 0xffff;
    }

    std::string_view text_;
    std::size_t at_ = 0;
};

void logError(std::string_view name, std::string_view line, std::string_view expected) {
    log("Strings table '%@', line %@: expected %@", {name, line, expected});
}

} // namespace

StringsTable readStringsTable(const std::filesystem::path& path) {
    std::error_code error;
    const auto bytes = readRegularFile(path, kLargestTable, error);
    if (error) {
        logError(path.native(), "1", "a regular file of at most 1 MiB, but: " + error.message());
        return {};
    }
    return parseStringsTable(bytes, path.native());
}

StringsTable parseStringsTable(std::string_view bytes, std::string_view name) {
    std::optional<Parser> parser;
    std::string text;
    try {
        text = decoded(bytes);
        return parser.emplace(text).table();
    } catch (const SyntaxError& error) {
        logError(name, std::to_string(parser ? parser->line() : 1), error.what());
        return {};
    }
}

} // namespace platform
