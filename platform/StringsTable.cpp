#include "platform/StringsTable.h"

#include "base/Iconv.h"
#include "platform/File.h"
#include "platform/Log.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <system_error>

namespace platform {
namespace {

constexpr std::u16string_view kBlanks = u" \t\r\n\f\v\u2028\u2029";
constexpr std::size_t kLargestTable = std::size_t{1} << 20U;
// UTF-16 in the byte order of this machine, without a mark.
constexpr const char* kNativeUTF16 =
    std::endian::native == std::endian::little ? "UTF-16LE" : "UTF-16BE";

/// What the parser expected where the table is wrong.
struct Expected : std::runtime_error {
    using std::runtime_error::runtime_error;
};

std::u16string decoded(std::string_view bytes) {
    const char* encoding = "UTF-8";
    if (bytes.starts_with("\xff\xfe") || bytes.starts_with("\xfe\xff")) {
        encoding = bytes.front() == '\xff' ? "UTF-16LE" : "UTF-16BE";
        bytes.remove_prefix(2);
    } else if (bytes.starts_with("\xef\xbb\xbf")) {
        bytes.remove_prefix(3);
    }
    const auto units = base::Iconv(kNativeUTF16, encoding).convert(bytes);
    if (!units) {
        throw Expected(std::string("text in ") + encoding);
    }
    std::u16string text(units->size() / sizeof(char16_t), u'\0');
    std::memcpy(text.data(), units->data(), units->size());
    return text;
}

std::string encoded(std::u16string_view text) {
    const std::string_view bytes(reinterpret_cast<const char*>(text.data()),
                                 text.size() * sizeof(char16_t));
    const auto result = base::Iconv("UTF-8", kNativeUTF16).convert(bytes);
    if (!result) {
        throw Expected("whole surrogate pairs");
    }
    return *result;
}

bool isDigit(char16_t unit, unsigned base) {
    return (unit >= u'0' && unit < u'0' + std::min(base, 10U)) ||
           (base == 16 && ((unit >= u'a' && unit <= u'f') || (unit >= u'A' && unit <= u'F')));
}

unsigned digitValue(char16_t unit) {
    return unit <= u'9' ? unit - u'0' : (unit | 0x20U) - u'a' + 10U;
}

/// Reads UTF-16, in which the format's escapes name the halves of a character one by one.
class Parser {
  public:
    explicit Parser(std::u16string_view text) : text_(text) {}

    StringsTable table() {
        StringsTable table;
        for (skipBlanks(); at_ < text_.size(); skipBlanks()) {
            const std::string key = token("a key");
            std::string value = key;
            if (skipBlanks(); take(u'=')) {
                skipBlanks();
                value = token("a value");
                skipBlanks();
            }
            if (!take(u';')) {
                throw Expected("';'");
            }
            table.emplace(key, value);
        }
        return table;
    }

    [[nodiscard]] auto line() const {
        return 1 +
               std::count(text_.begin(), text_.begin() + static_cast<std::ptrdiff_t>(at_), u'\n');
    }

  private:
    bool take(char16_t unit) {
        const bool there = at_ < text_.size() && text_[at_] == unit;
        at_ += there ? 1 : 0;
        return there;
    }

    void skipBlanks() {
        while (at_ < text_.size()) {
            const auto rest = text_.substr(at_);
            if (rest.starts_with(u"/*")) {
                skipPast(u"*/", 2, "the end of the comment");
            } else if (rest.starts_with(u"//")) {
                at_ = std::min(text_.find(u'\n', at_), text_.size());
            } else if (kBlanks.find(rest.front()) != std::u16string_view::npos) {
                ++at_;
            } else {
                return;
            }
        }
    }

    void skipPast(std::u16string_view end, std::size_t from, const char* expected) {
        const auto found = text_.find(end, at_ + from);
        if (found == std::u16string_view::npos) {
            throw Expected(expected);
        }
        at_ = found + end.size();
    }

    std::string token(const char* expected) { return take(u'"') ? quoted() : bare(expected); }

    std::string bare(const char* expected) {
        const auto start = at_;
        const auto isBare = [](char16_t unit) {
            return isDigit(unit, 10) || ((unit | 0x20U) >= u'a' && (unit | 0x20U) <= u'z') ||
                   std::u16string_view(u"_$/:.-").find(unit) != std::u16string_view::npos;
        };
        while (at_ < text_.size() && isBare(text_[at_])) {
            ++at_;
        }
        if (at_ == start) {
            throw Expected(expected);
        }
        return encoded(text_.substr(start, at_ - start));
    }

    std::string quoted() {
        std::u16string value;
        while (!take(u'"')) {
            if (at_ == text_.size()) {
                throw Expected("'\"'");
            }
            const char16_t unit = text_[at_++];
            value.push_back(unit == u'\\' ? escape() : unit);
        }
        return encoded(value);
    }

    char16_t escape() {
        constexpr std::u16string_view kLetters = u"ntrfbav";
        constexpr std::u16string_view kMeanings = u"\n\t\r\f\b\a\v";
        if (at_ == text_.size()) {
            throw Expected("an escaped character");
        }
        if (isDigit(text_[at_], 8)) {
            return number(8, 1, 3);
        }
        const char16_t unit = text_[at_++];
        if (unit == u'U' || unit == u'u') {
            return number(16, 4, 4);
        }
        const auto letter = kLetters.find(unit);
        return letter == std::u16string_view::npos ? unit : kMeanings[letter];
    }

    char16_t number(unsigned base, int least, int most) {
        unsigned value = 0;
        int count = 0;
        for (; count < most && at_ < text_.size() && isDigit(text_[at_], base); ++count) {
            value = value * base + digitValue(text_[at_++]);
        }
        if (count < least) {
            throw Expected("four hexadecimal digits");
        }
        return static_cast<char16_t>(value);
    }

    std::u16string_view text_;
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
    std::u16string text;
    try {
        text = decoded(bytes);
        return parser.emplace(text).table();
    } catch (const Expected& expected) {
        logError(name, std::to_string(parser ? parser->line() : 1), expected.what());
        return {};
    }
}

} // namespace platform
