#include "app/FocusRing.h"

#include "app/Contrast.h"

#include <QPainter>

namespace app {
namespace {

constexpr qreal kWidth = 2;
constexpr qreal kRadius = 4;

} // namespace

void FocusRing::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(visibleColor(palette().color(QPalette::Highlight), palette()), kWidth));
    constexpr qreal kInset = kWidth / 2; // a pen covers both sides of its line
    painter.drawRoundedRect(QRectF(rect()).adjusted(kInset, kInset, -kInset, -kInset), kRadius,
                            kRadius);
}

} // namespace app
