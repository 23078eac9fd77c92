#pragma once

#include <QFrame>
#include <QPointer>

namespace app {

/// A panel that hangs under the title of its parent window. While its session runs it is modal for
/// the window: a backdrop lies over the rest of the window and takes all input.
class ProgressSheet final : public QFrame {
    Q_OBJECT

  public:
    /// @param parent the window that it hangs in and that the backdrop covers; not null.
    explicit ProgressSheet(QWidget* parent);

    /// Shows the sheet and begins its modal session: `content`, the window's content, takes no
    /// input until endSheet(). The sheet covers the first item of its layout and leaves the rest
    /// visible.
    void beginSheet(QWidget& content);
    /// Ends the modal session. The sheet stays on the screen.
    void endSheet(int returnCode);

    /// By how many pixels its text needs more than the message below it has; less than that where
    /// it does not.
    [[nodiscard]] int missingHeight() const;
    /// Whether the modal session runs.
    [[nodiscard]] bool isSessionRunning() const { return !backdrop_.isNull(); }
    /// What the last session was ended with; 0 before that.
    [[nodiscard]] int returnCode() const { return returnCode_; }

    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

  private:
    [[nodiscard]] QRect messageArea() const;
    void place();

    QPointer<QWidget> content_;
    QPointer<QWidget> backdrop_;
    int returnCode_ = 0;
};

} // namespace app
