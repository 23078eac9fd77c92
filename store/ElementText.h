#pragma once

#include "store/Conversions.h"
#include "store/FieldTypes.h"

#include <optional>
#include <string>
#include <string_view>

namespace store {

/// The text of an element as it is gathered, and the values that it is read as. A date and a number
/// are worked out once for a text: the ends of 256 nested elements may ask for that of one text of
/// 1 MiB. For one thread at a time.
class ElementText {
  public:
    /// Begins a new, empty text in the memory of the one before.
    void clear() {
        text_.clear();
        forgetValues();
    }
    void append(std::string_view piece) {
        text_.append(piece);
        forgetValues();
    }

    /// The text so far; valid until it is changed.
    [[nodiscard]] const std::string& text() const { return text_; }
    /// Returns the text's date by `read`, with the exceptions that `read` throws.
    /// @param read takes the text as a std::string_view and returns a Date, always in one way.
    template <class Reader>
    [[nodiscard]] const Date& date(const Reader& read) {
        return date_ ? *date_ : date_.emplace(read(text_));
    }
    /// As numberFromText().
    [[nodiscard]] std::uint64_t number() {
        return number_ ? *number_ : number_.emplace(numberFromText(text_));
    }
    /// As flagFromText().
    [[nodiscard]] bool flag() const { return flagFromText(text_); }

  private:
    void forgetValues() {
        date_.reset();
        number_.reset();
    }

    std::string text_;
    std::optional<Date> date_;
    std::optional<std::uint64_t> number_;
};

} // namespace store
