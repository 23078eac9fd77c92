#pragma once

#include <QColor>

namespace app {

/// The least contrast of a text with what is behind it, by the Web Content Accessibility Guidelines
/// (WCAG 2.1, success criterion 1.4.3).
inline constexpr double kReadableContrast = 4.5;

/// The contrast ratio of two opaque colours by WCAG 2.1, from 1 (the same) to 21 (black and white).
[[nodiscard]] double contrast(const QColor& one, const QColor& other);

/// `background`, or the nearest darker or lighter shade of it on which `text` can be read, also
/// where a style draws it a good deal lighter or darker than it was told.
[[nodiscard]] QColor readableBackground(QColor background, const QColor& text);

} // namespace app
