#pragma once

#include <memory>
#include <string>

#include <QDialog>
#include <QTimer>

namespace Ui {
class MainWindow;
}

namespace app {

struct Density;

/// The helper's one window: its texts in the user's language, its controls, and the progress sheet
/// that hangs in it. It decides nothing: what a control is for is the business of whoever is
/// connected to its signal. For the main thread.
class MainWindow final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

  public:
    /// Builds the window from its description, with all texts localized. It is not shown yet.
    MainWindow();
    ~MainWindow() override;

    /// Shows the window in the middle of its screen, in front of whatever the user works in. The
    /// removal's control is disabled until the window has been on the screen for a second, because
    /// a click or key in flight is meant for another window.
    /// @param reference the user's subscription reference, which the window shows.
    void present(const std::string& reference);
    /// Offers the removal (again), at once: its control and the second button are there, and the
    /// main button keeps the subscription. A press of the first takes both away, with the message,
    /// and the main button is left, to close the window.
    void offerRemoval();
    /// Starts the spinner and shows the sheet, modal for the window, which cannot be closed then.
    /// Its text has the focus.
    void beginProgress();
    /// Shows `text` on the sheet. Assistive technology is told.
    void showProgress(const QString& text);
    /// Ends the sheet's modal session. The sheet stays on the screen and its spinner turns on; the
    /// main button has the focus.
    void endProgress(int returnCode);

  signals:
    void mainButtonPressed();
    /// The second button, or Escape.
    void cancelButtonPressed();
    /// The control that starts the removal: once, until it is offered again.
    void removalRequested();
    /// The window was closed, or the desktop's key for leaving a program was pressed.
    void quitRequested();

  protected:
    void changeEvent(QEvent* event) override;
    void closeEvent(QCloseEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void localize();
    void connectControls();
    void showReference(const std::string& reference);
    void setRemovalOffered(bool isOffered);
    [[nodiscard]] QSize frame() const;
    [[nodiscard]] QSize room() const;
    void setDensity(const Density& density);
    [[nodiscard]] QSize neededSize() const;
    void fit();
    void growForProgress();
    void stayOnScreen();

    std::unique_ptr<Ui::MainWindow> ui_;
    QTimer guard_; // until the removal's control is enabled
};

} // namespace app
