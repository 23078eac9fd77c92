#pragma once

#include <QFrame>
#include <QPointer>

namespace app {

/// A card in the upper part of its parent window, with a text in a scroll area. In its session the
/// sheet is modal for the window: a backdrop covers the rest of the window and takes all input.
class ProgressSheet final : public QFrame {
    Q_OBJECT

  public:
    /// @param parent the window that contains the sheet and that the backdrop covers. Never null.
    explicit ProgressSheet(QWidget* parent);

    /// Shows the sheet and begins its modal session.
    /// @param content the window's content, which is disabled until endSheet().
    /// @param covered the part of the content that the sheet covers, in a layout.
    void beginSheet(QWidget& content, QWidget& covered);
    /// Ends the modal session. The sheet stays on the screen.
    void endSheet(int returnCode);

    /// Returns the pixels by which the text is higher than its scroll area. Negative if the text is
    /// lower.
    [[nodiscard]] int missingHeight() const;
    /// Returns true during the modal session.
    [[nodiscard]] bool isSessionRunning() const { return !backdrop_.isNull(); }
    /// Returns the code that ended the last session, or 0 before.
    [[nodiscard]] int returnCode() const { return returnCode_; }

    bool eventFilter(QObject* watched, QEvent* event) override;

  protected:
    void paintEvent(QPaintEvent* event) override;

  private:
    void updateGeometries();

    QPointer<QWidget> content_;
    QPointer<QWidget> covered_;
    QPointer<QWidget> backdrop_;
    int returnCode_ = 0;
};

} // namespace app
