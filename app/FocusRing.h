#pragma once

#include <QFocusFrame>

namespace app {

/// A ring around the focused control, in the palette's highlight color. Many styles hide the focus
/// on a default button, or until the first Tab. setWidget() sets the control.
class FocusRing final : public QFocusFrame {
    Q_OBJECT

  public:
    using QFocusFrame::QFocusFrame;

  protected:
    void paintEvent(QPaintEvent* event) override;
};

} // namespace app
