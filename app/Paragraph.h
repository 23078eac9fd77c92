#pragma once

#include <map>

#include <QFont>
#include <QLabel>
#include <QString>

namespace app {

/// A label that lays out its text once for each width, to save time at the start. QLabel does so
/// each time a layout asks for its height, and the layouts ask again and again before the window
/// appears. Main thread.
class Paragraph : public QLabel {
  public:
    using QLabel::QLabel;

    [[nodiscard]] int heightForWidth(int width) const override;

  private:
    // The heights by width, for this text and font.
    mutable std::map<int, int> heights_;
    mutable QString text_;
    mutable QFont font_;
};

} // namespace app
