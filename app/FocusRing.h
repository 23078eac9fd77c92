#pragma once

#include <QFocusFrame>

namespace app {

/// A ring around a control, in the palette's highlight color. Many styles show no focus on a
/// default button, or none before the first Tab. setWidget() names the control.
class FocusRing final : public QFocusFrame {
    Q_OBJECT

  public:
    using QFocusFrame::QFocusFrame;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace app
