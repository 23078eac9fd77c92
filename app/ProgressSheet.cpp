#include "app/ProgressSheet.h"

#include "app/Contrast.h"

#include <QEvent>
#include <QLayout>
#include <QPainter>
#include <QPalette>
#include <QScrollArea>

namespace app {
namespace {

constexpr int kBackdropOpacity = 90; // of 255: dims the window, which stays recognizable
constexpr qreal kRadius = 8;

QWidget* makeBackdrop(QWidget* window) {
    auto* backdrop = new QWidget(window);
    backdrop->setObjectName(QStringLiteral("backdrop"));
    QPalette shade;
    shade.setColor(QPalette::Window, QColor(0, 0, 0, kBackdropOpacity));
    backdrop->setPalette(shade);
    backdrop->setAutoFillBackground(true);
    return backdrop;
}

} // namespace

ProgressSheet::ProgressSheet(QWidget* parent) : QFrame(parent) {
    setVisible(false);
}

void ProgressSheet::beginSheet(QWidget& content, QWidget& covered) {
    // Disable the content, because the backdrop stops only the mouse, not the keyboard or assistive
    // technology.
    content_ = &content;
    content.setEnabled(false);
    if (!isSessionRunning()) {
        backdrop_ = makeBackdrop(parentWidget());
        covered_ = &covered;
        covered.installEventFilter(this);
        content.installEventFilter(this); // moves when it is scrolled
        parentWidget()->installEventFilter(this);
    }
    updateGeometries();
    backdrop_->show();
    show();
    raise();
}

void ProgressSheet::endSheet(int returnCode) {
    returnCode_ = returnCode;
    delete backdrop_;
    if (content_) {
        content_->setEnabled(true);
    }
}

bool ProgressSheet::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Resize || event->type() == QEvent::Move) {
        updateGeometries();
    }
    return QFrame::eventFilter(watched, event);
}

void ProgressSheet::paintEvent(QPaintEvent* /*event*/) {
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(visibleColor(palette().color(QPalette::Mid), palette()));
    painter.setBrush(palette().window());
    constexpr qreal kHalf = 0.5; // aligns a line of one pixel with the pixels
    painter.drawRoundedRect(QRectF(rect()).adjusted(kHalf, kHalf, -kHalf, -kHalf), kRadius,
                            kRadius);
}

int ProgressSheet::missingHeight() const {
    const auto& text = *findChild<QScrollArea*>();
    return text.widget()->heightForWidth(text.width()) - text.height();
}

void ProgressSheet::updateGeometries() {
    const QPoint corner = covered_->mapTo(parentWidget(), QPoint());
    const QLayout& layout = *covered_->parentWidget()->layout();
    const int margin = layout.contentsMargins().left() / 2;
    const QRect area =
        QRect(corner, covered_->size()).adjusted(-margin, -margin, margin, layout.spacing() / 2);
    // In a small window, a part of the area may be scrolled away.
    setGeometry(area & parentWidget()->rect().marginsRemoved({margin, margin, margin, margin}));
    if (backdrop_) {
        backdrop_->setGeometry(parentWidget()->rect());
    }
}

} // namespace app
