#pragma once

#include "store/Conversions.h"
#include "store/FieldTypes.h"

#include <optional>
#include <string>
#include <string_view>

namespace store {

/// The gathered text of an element, and its values. A date and a number are converted once for each
/// text, because the ends of 256 nested elements can request the value of one text of 1 MiB. For
/// one thread at a time.
class ElementText {
  public:
    /// Starts a new, empty text and keeps the memory of the last one.
    void clear() {
        text_.clear();
        forgetValues();
    }
    void append(std::string_view piece) {
        text_.append(piece);
        forgetValues();
    }

    /// Returns the text so far, valid until the next change.
    [[nodiscard]] const std::string& text() const { return text_; }
    /// Returns the text's date by `read`, and passes on its exceptions.
    /// @param read takes the text as a std::string_view and returns a Date. Equal texts must give
    /// equal dates.
    template <class Reader>
    [[nodiscard]] const Date& date(const Reader& read) {
        return date_ ? *date_ : date_.emplace(read(text_));
    }
    /// Returns the text's number by numberFromText().
    [[nodiscard]] std::uint64_t number() {
        return number_ ? *number_ : number_.emplace(numberFromText(text_));
    }
    /// Returns the text's flag by flagFromText().
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
