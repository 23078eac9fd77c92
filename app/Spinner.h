#pragma once

#include <QTimer>
#include <QWidget>

namespace app {

/// A turning wheel of spokes that says that something is under way. It stands still, and is
/// invisible, until it is started.
class Spinner final : public QWidget {
    Q_OBJECT

  public:
    explicit Spinner(QWidget* parent = nullptr);

    /// Becomes visible and starts to turn, or stands still where the user wants no motion. Nothing
    /// stops it again.
    void startAnimation();
    /// How often it has moved on by one spoke.
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
