#pragma once

#include <string>
#include <string_view>

#include <QString>

class QWidget;

namespace app {

/// Returns a text in the user's language, with each "%@" replaced by the product's display name.
/// The table is read once, and again when the language or the bundle has changed its path. In a
/// language written from right to left the name has non-breaking spaces, because its second line
/// would be read first. Any thread.
/// @param key the English text, which is the key in the main bundle's default localized strings
/// table, and the result if the table lacks it.
[[nodiscard]] QString localized(std::string_view key);

/// Returns a text in the user's language, with each "%@" replaced by `argument`. Any thread.
[[nodiscard]] QString localized(std::string_view key, const std::string& argument);

/// Returns the product's display name: the entry "Product Name" of the same table.
[[nodiscard]] std::string productName();

/// Returns the direction in which the language of these texts is written.
[[nodiscard]] Qt::LayoutDirection textDirection();

/// Replaces the texts of all labels and buttons in a window, and the names and descriptions of its
/// widgets for assistive technology, by those in the user's language. The present texts are the
/// keys. Main thread.
void localizeTexts(const QWidget& window);

} // namespace app
