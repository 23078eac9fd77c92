#pragma once

#include <string>
#include <string_view>

#include <QString>

namespace app {

/// A text for people: the entry of the main bundle's default localized strings table under `key`,
/// the English text itself, with each "%@" in it replaced by the product's display name. An entry
/// that is missing gives the key. In a language that is written from right to left the name has
/// no-break spaces, because its second line would be read first. May be called from any thread.
[[nodiscard]] QString localized(std::string_view key);

/// The same with `argument` in place of each "%@".
[[nodiscard]] QString localized(std::string_view key, const std::string& argument);

/// The product's display name: the entry "Product Name" of the same table.
[[nodiscard]] std::string productName();

/// The direction in which the language of these texts is written.
[[nodiscard]] Qt::LayoutDirection textDirection();

} // namespace app
