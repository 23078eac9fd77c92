#pragma once

#include "store/ElementText.h"
#include "store/FastSpringRootParser.h"
#include "store/FieldTypes.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <stdexcept>
#include <string_view>
#include <type_traits>
#include <variant>

namespace store {

/// The fields that elements fill in one context, sorted for a quick search. Made by the compiler.
template <class Field, std::size_t capacity>
class ElementTable {
  public:
    /// Takes the fields of `all`, which must outlive the table, with an element in `context`.
    /// @param context such as "purchaser/". Empty for the elements without a context.
    /// @throws std::logic_error if two fields have the same element, so that the build fails.
    constexpr explicit ElementTable(const std::array<Field, capacity>& all,
                                    std::string_view context = "") {
        for (const Field& field : all) {
            if (!field.element.empty() &&
                field.element.substr(0, field.element.find('/') + 1) == context) {
                rows_[size_++] = {field.element.substr(context.size()), &field};
            }
        }
        std::sort(begin(), end(), isBefore);
        if (std::adjacent_find(begin(), end(), [](const Row& one, const Row& next) {
                return one.element == next.element;
            }) != end()) {
            throw std::logic_error("two fields have the same element");
        }
    }

    /// Returns the field that a lowercased element fills, or a null pointer.
    [[nodiscard]] constexpr const Field* find(std::string_view element) const {
        const auto* const row = std::lower_bound(begin(), end(), Row{element}, isBefore);
        return row != end() && row->element == element ? row->field : nullptr;
    }

  private:
    struct Row {
        std::string_view element;
        const Field* field = nullptr;
    };

    /// Compares lengths first, which separates most names without a look at their letters.
    static constexpr bool isBefore(const Row& one, const Row& other) {
        return one.element.size() != other.element.size()
                   ? one.element.size() < other.element.size()
                   : one.element < other.element;
    }

    constexpr Row* begin() { return rows_.data(); }
    constexpr Row* end() { return rows_.data() + size_; }
    [[nodiscard]] constexpr const Row* begin() const { return rows_.data(); }
    [[nodiscard]] constexpr const Row* end() const { return rows_.data() + size_; }

    std::array<Row, capacity> rows_{};
    std::size_t size_ = 0;
};

/// Converts the text of an element to the type of a field. The parser reads dates.
/// @throws std::out_of_range for a date, by FastSpringRootParser::fromServerDate().
template <class Value>
Value converted(ElementText& text, const FastSpringRootParser& parser) {
    if constexpr (std::is_same_v<Value, Text>) {
        return text.text();
    } else if constexpr (std::is_same_v<Value, Date>) {
        return text.date([&](std::string_view date) { return parser.fromServerDate(date); });
    } else if constexpr (std::is_same_v<Value, Number>) {
        return text.number();
    } else if constexpr (std::is_same_v<Value, bool>) {
        return text.flag();
    } else {
        return {}; // containers fill lists, and lists have no element
    }
}

/// Stores the converted text of an element in the field that it fills. Without a record the value
/// is discarded after its conversion, so that an unreadable date fails even then.
/// @return true if the table has the element.
/// @throws what converted() throws. The record is then unchanged.
template <class Table, class Record>
bool storeElement(const FastSpringRootParser& parser, const Table& table, std::string_view element,
                  ElementText& text, Record* record) {
    const auto* const field = table.find(element);
    if (field == nullptr) {
        return false;
    }
    std::visit(
        [&]<class Value>(Value Record::*member) {
            Value value = converted<Value>(text, parser);
            if (record != nullptr) {
                record->*member = std::move(value);
            }
        },
        field->member);
    return true;
}

} // namespace store
