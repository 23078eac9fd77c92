#pragma once

#include <array>
#include <memory>
#include <string>

#include <QDialog>
#include <QTimer>

namespace Ui {
class MainWindow;
}

namespace app {

struct Density;

/// The helper's only window: its texts in the user's language, its controls, and the progress
/// sheet. The window reports presses by its signals and leaves the actions to their receivers. For
/// the main thread.
class MainWindow final : public QDialog {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(MainWindow)

  public:
    /// Builds the hidden window from its description, with all texts localized.
    MainWindow();
    ~MainWindow() override;

    /// Shows the window in the middle of its screen, in front of the user's other windows. The
    /// remove button is disabled until the window has been on the screen for a second, because a
    /// click or key in flight is meant for another window.
    /// @param reference the user's subscription reference, which the window shows.
    /// @param hasAccountPage true if an account page would open. If false, the window does not
    /// promise one.
    void present(const std::string& reference, bool hasAccountPage);
    /// Offers the removal (again) immediately: shows the remove button, the second button and the
    /// message, and the main button keeps the subscription. A press of the remove button hides all
    /// three, and the main button then closes the window.
    void offerRemoval();
    /// Starts the spinner and shows the progress sheet, focused and modal for the window. The
    /// window cannot be closed during the modal session.
    void beginProgress();
    /// Shows `text` on the progress sheet and announces it to assistive technology.
    void showProgress(const QString& text);
    /// Returns true during the sheet's modal session.
    [[nodiscard]] bool isInProgress() const;
    /// Ends the sheet's modal session. The sheet stays visible with its turning spinner, and the
    /// main button gets the focus.
    void endProgress(int returnCode);

  signals:
    void mainButtonPressed();
    /// Emitted by the second button and by Escape.
    void cancelButtonPressed();
    /// Emitted by the remove button, once until the removal is offered again.
    void removalRequested();
    /// Emitted when the sheet's modal session has ended.
    void progressEnded();
    /// Emitted when the user closes the window or presses the desktop's key for quitting.
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
    [[nodiscard]] QSize estimatedFrameSize() const;
    [[nodiscard]] QSize largestSize() const;
    void setDensity(const Density& density);
    [[nodiscard]] std::array<QLayout*, 3> layouts() const;
    [[nodiscard]] QSize neededSize() const;
    void fit();
    void growForProgress();
    void stayOnScreen();

    std::unique_ptr<Ui::MainWindow> ui_;
    QTimer guard_; // enables the remove button
};

} // namespace app
