#pragma once

#include <QFrame>
#include <QPointer>

namespace app {

/// A card in the upper part of its parent window, with a text in a scroll area. While its session
/// runs it is modal for the window: a backdrop lies over the rest of the window and takes all
/// input.
class ProgressSheet final : public QFrame {
    Q_OBJECT

  public:
    /// @param parent the window that contains it and that the backdrop covers; not null.
    explicit ProgressSheet(QWidget* parent);

    /// Shows the sheet and begins its modal session.
    /// @param content the window's content, which takes no input until endSheet().
    /// @param covered the part of it that the sheet covers, in a layout.
    void beginSheet(QWidget& content, QWidget& covered);
    /// Ends the modal session. The sheet stays on the screen.
    void endSheet(int returnCode);

    /// Returns by how many pixels its text is higher than its place, or a negative number if the
    /// text is lower.
    [[nodiscard]] int missingHeight() const;
    /// Whether the modal session runs.
    [[nodiscard]] bool isSessionRunning() const { return !backdrop_.isNull(); }
    /// What the last session was ended with; 0 before that.
    [[nodiscard]] int returnCode() const { return returnCode_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void place();

    QPointer<QWidget> content_;
    QPointer<QWidget> covered_;
    QPointer<QWidget> backdrop_;
    int returnCode_ = 0;
};

} // namespace app
