#pragma once

#include "store/ElementText.h"
#include "store/FastSpringRootParser.h"
#include "store/FieldTypes.h"

#include <algorithm>
#include <span>
#include <string_view>
#include <type_traits>
#include <variant>

namespace store {

/// A member of a record that an element can fill. Its type says how the element's text is
/// converted.
template <class Record>
using Property = std::variant<Text Record::*, Date Record::*, Number Record::*, bool Record::*>;

/// One row of an element table: a lowercased element name and the property it fills.
template <class Record>
struct Element {
    std::string_view name;
    Property<Record> property;
};

/// The order of element tables: by length first, which tells most names apart without looking at
/// their letters, then by the letters.
constexpr bool isBefore(std::string_view one, std::string_view other) {
    return one.size() != other.size() ? one.size() < other.size() : one < other;
}

/// Whether a table is sorted by isBefore() and holds no name twice, as storeElement() needs it.
template <class Record>
constexpr bool isElementTable(std::span<const Element<Record>> table) {
    return std::adjacent_find(table.begin(), table.end(), [](const auto& one, const auto& next) {
               return !isBefore(one.name, next.name);
           }) == table.end();
}

/// Converts the text of an element to a value of a property's type. The parser reads dates.
/// @throws std::out_of_range for a date, by FastSpringRootParser::fromServerDate().
template <class Value>
Value converted(ElementText& text, const FastSpringRootParser& parser) {
    if constexpr (std::is_same_v<Value, Text>) {
        return text.text();
    } else if constexpr (std::is_same_v<Value, Date>) {
        return text.date([&](std::string_view date) { return parser.fromServerDate(date); });
    } else if constexpr (std::is_same_v<Value, Number>) {
        return text.number();
    } else {
        return text.flag();
    }
}

/// Looks `name` up in a table and stores the converted text in the row's property of `record`; with
/// no record the value is discarded. The text is converted before the record is looked at, so a
/// date that cannot be read fails without a record too.
///
/// @return whether the table has the name.
/// @throws what converted() throws; the record is then unchanged.
template <class Record>
bool storeElement(const FastSpringRootParser& parser,
                  std::span<const Element<std::type_identity_t<Record>>> table,
                  std::string_view name, ElementText& text, Record* record) {
    const auto row = std::lower_bound(table.begin(), table.end(), name,
                                      [](const auto& element, std::string_view wanted) {
                                          return isBefore(element.name, wanted);
                                      });
    if (row == table.end() || row->name != name) {
        return false;
    }
    std::visit(
        [&]<class Value>(Value Record::*property) {
            Value value = converted<Value>(text, parser);
            if (record != nullptr) {
                record->*property = std::move(value);
            }
        },
        row->property);
    return true;
}

} // namespace store
