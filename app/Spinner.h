#pragma once

#include <QTimer>
#include <QWidget>

namespace app {

/// A spinner of turning spokes, which shows that the removal is running. Invisible until
/// startAnimation().
class Spinner final : public QWidget {
    Q_OBJECT

  public:
    explicit Spinner(QWidget* parent = nullptr);

    /// Shows the spinner for good. The spinner turns, or stands still if the user wants less
    /// motion.
    void startAnimation();
    /// Returns how often the spinner has turned by one spoke.
    [[nodiscard]] int steps() const { return steps_; }

    [[nodiscard]] QSize sizeHint() const override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void advance();

    QTimer timer_;
    int steps_ = 0;
    bool isStarted_ = false;
};

} // namespace app
