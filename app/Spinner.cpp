#include "app/Spinner.h"

#include "platform/Preferences.h"

#include <chrono>

#include <QAccessibleWidget>
#include <QPainter>

namespace app {
namespace {

constexpr int kSpokes = 12;
constexpr std::chrono::milliseconds kStep{83}; // one turn a second

/// Presents a spinner to assistive technology as an animation instead of as a panel.
QAccessibleInterface* accessibleSpinner(const QString& /*className*/, QObject* object) {
    auto* spinner = qobject_cast<Spinner*>(object);
    return spinner != nullptr ? new QAccessibleWidget(spinner, QAccessible::Animation) : nullptr;
}

} // namespace

Spinner::Spinner(QWidget* parent) : QWidget(parent) {
    QAccessible::installFactory(accessibleSpinner); // Qt ignores a repeated installation
    setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
    setAutoFillBackground(true); // spares painting the parent at each step
    connect(&timer_, &QTimer::timeout, this, &Spinner::advance);
}

void Spinner::startAnimation() {
    isStarted_ = true;
    timer_.start(kStep);
    update();
}

QSize Spinner::sizeHint() const {
    // Use the height of two lines of text, to grow with the user's font.
    const int side = fontMetrics().height() * 2;
    return {side, side};
}

void Spinner::advance() {
    // Ask only at the first step, because the answer may wait until GIO is loaded, and the sheet
    // must appear before.
    if (steps_ == 0 && platform::wantsReducedMotion()) {
        timer_.stop();
        return;
    }
    ++steps_;
    update();
}

void Spinner::paintEvent(QPaintEvent* /*event*/) {
    if (!isStarted_) {
        return;
    }
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.translate(QRectF(rect()).center());
    const qreal unit = qMin(width(), height()) / 32.0;
    painter.scale(unit, unit);
    painter.rotate(steps_ % kSpokes * 360.0 / kSpokes);
    QColor colour = palette().color(QPalette::WindowText);
    for (int spoke = 0; spoke < kSpokes; ++spoke) {
        painter.rotate(360.0 / kSpokes);
        colour.setAlphaF(static_cast<float>(0.1 + 0.9 * spoke / (kSpokes - 1)));
        painter.setBrush(colour);
        painter.drawRoundedRect(QRectF(-1.5, -15.0, 3.0, 8.5), 1.5, 1.5);
    }
}

} // namespace app
