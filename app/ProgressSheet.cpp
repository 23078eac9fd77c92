#include "app/ProgressSheet.h"

#include <algorithm>

#include <QEvent>
#include <QLayout>
#include <QPalette>

namespace app {
namespace {

constexpr int kBackdropOpacity = 90; // of 255: the window stays recognisable, the sheet stands out

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
    setAutoFillBackground(true);
    parent->installEventFilter(this);
}

void ProgressSheet::beginSheet(QWidget& content) {
    // Disabled as well as covered: keyboard and assistive technology do not come through the
    // backdrop.
    content_ = &content;
    content.setEnabled(false);
    if (!isSessionRunning()) {
        backdrop_ = makeBackdrop(parentWidget());
    }
    place();
    backdrop_->show();
    backdrop_->raise();
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

bool ProgressSheet::event(QEvent* event) {
    if (event->type() == QEvent::LayoutRequest) {
        place(); // another text may need more lines
    }
    return QFrame::event(event);
}

bool ProgressSheet::eventFilter(QObject* watched, QEvent* event) {
    if (watched == parentWidget() && event->type() == QEvent::Resize) {
        place();
    }
    return QFrame::eventFilter(watched, event);
}

QRect ProgressSheet::messageArea() const {
    const QLayout* layout = content_ ? content_->layout() : nullptr;
    if (layout == nullptr) {
        return parentWidget()->rect();
    }
    QRect area = layout->itemAt(0)->geometry();
    area.moveTopLeft(content_->mapTo(parentWidget(), area.topLeft()));
    return area.adjusted(0, 0, 0, layout->spacing() / 3);
}

int ProgressSheet::missingHeight() const {
    return layout()->totalHeightForWidth(width()) - messageArea().bottom();
}

void ProgressSheet::place() {
    // It covers the message, the content's first item, whole, so that no half lines look out from
    // under it, and leaves the buttons below it visible.
    const QRect area = messageArea();
    const int height = std::max(area.bottom(), layout()->totalHeightForWidth(area.width()));
    setGeometry(area.left(), 0, area.width(), height);
    if (backdrop_) {
        backdrop_->setGeometry(parentWidget()->rect());
    }
}

} // namespace app
