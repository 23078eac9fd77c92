#pragma once

#include <QBoxLayout>
#include <QMargins>
#include <QSize>

namespace app {

/// The window's margins, spaces and sizes for a screen's size.
struct Density {
    bool hasIcon;
    double headingScale;
    QMargins contentMargins;
    int contentSpacing;
    int itemSpacing; ///< between paragraphs, and between buttons
    QMargins sheetMargins;
    QSize buttonPadding; ///< around a button's text, beyond the style's
    QBoxLayout::Direction buttons;
};

inline constexpr Density kRoomy{.hasIcon = true,
                                .headingScale = 1.5,
                                .contentMargins = {28, 28, 28, 20},
                                .contentSpacing = 20,
                                .itemSpacing = 10,
                                .sheetMargins = {24, 18, 24, 18},
                                .buttonPadding = {20, 6},
                                .buttons = QBoxLayout::LeftToRight};
inline constexpr Density kCompact{.hasIcon = false,
                                  .headingScale = 1,
                                  .contentMargins = {6, 6, 6, 6},
                                  .contentSpacing = 6,
                                  .itemSpacing = 6,
                                  .sheetMargins = {8, 4, 8, 4},
                                  .buttonPadding = {0, 0},
                                  .buttons = QBoxLayout::LeftToRight};
/// The density for windows too narrow for buttons side by side.
inline constexpr Density kStacked = [] {
    Density density = kCompact;
    density.buttons = QBoxLayout::TopToBottom;
    return density;
}();

} // namespace app
