#include "app/Contrast.h"

#include <algorithm>
#include <cmath>

namespace app {
namespace {

// Percent of its lightness by which a style may draw a colour lighter or darker. For a default
// button of Qt's own Fusion style 125 was too little, 170 is enough (seen 2026-11-23 in what it
// drew).
constexpr int kVariation = 170;
constexpr int kStep = 105; // percent of the lightness from one shade that is tried to the next

double luminance(const QColor& color) {
    const auto linear = [](double part) {
        return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
    };
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

bool isReadable(const QColor& background, const QColor& text) {
    return std::min(contrast(background.lighter(kVariation), text),
                    contrast(background.darker(kVariation), text)) >= kReadableContrast;
}

} // namespace

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

QColor readableBackground(QColor background, const QColor& text) {
    const bool textIsLight = luminance(text) > luminance(background);
    while (!isReadable(background, text) && background != Qt::black && background != Qt::white) {
        const QColor next = textIsLight ? background.darker(kStep) : background.lighter(kStep);
        if (next == background) {
            break;
        }
        background = next;
    }
    return background;
}

} // namespace app
