#include "app/Contrast.h"

#include <algorithm>
#include <cmath>

namespace app {
namespace {

constexpr double kLeastContrast = 3;
constexpr int kSteps = 16; // from the wanted color to the text's

double linear(double part) {
    return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
}

double luminance(const QColor& color) {
    return 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
           0.0722 * linear(color.blueF());
}

double contrast(const QColor& one, const QColor& other) {
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return (light + 0.05) / (dark + 0.05);
}

int mixed(int from, int to, int step) {
    return from + (to - from) * step / kSteps;
}

} // namespace

QColor visibleColor(const QColor& wanted, const QPalette& palette) {
    const QColor ground = palette.color(QPalette::Window);
    const QColor text = palette.color(QPalette::WindowText);
    for (int step = 0; step < kSteps; ++step) {
        const QColor color(mixed(wanted.red(), text.red(), step),
                           mixed(wanted.green(), text.green(), step),
                           mixed(wanted.blue(), text.blue(), step));
        if (contrast(color, ground) >= kLeastContrast) {
            return color;
        }
    }
    return text;
}

} // namespace app
