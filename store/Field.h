#pragma once

#include "store/FieldTypes.h"

#include <string_view>
#include <variant>

namespace store {

/// One field of a record. Parsing, JSON and the protocol page follow the table of the record's
/// fields, kFields<Record>.
/// @tparam Lists the record's kinds of list, as members.
template <class Record, class... Lists>
struct Field {
    /// The lowercased element that fills the field, or empty if none does. If an
    /// element counts in one context only, the context stands in front: "purchaser/email".
    std::string_view element;
    std::string_view name; ///< of the property
    std::variant<Text Record::*, Date Record::*, Number Record::*, bool Record::*, Lists...> member;
};

/// The fields of a record in the order of its declaration, as an array: see the specializations
/// beside the records. `false` marks a type without fields.
template <class Record>
inline constexpr bool kFields = false;

} // namespace store
