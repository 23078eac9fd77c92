#pragma once

#include <memory>

#include <QDialog>

class QPushButton;
namespace Ui {
class MainWindow;
}

namespace app {

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

    /// Shows the window in the middle of its screen, in front of whatever the user works in.
    void present();
    /// Offers the removal (again): its control and the second button are there, and the main button
    /// keeps the subscription. A press of the first takes both away, and the main button is left,
    /// to close the window.
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
    void closeEvent(QCloseEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;

  private:
    void localize();
    void setLooks();
    void connectControls();
    void setRemovalOffered(bool isOffered);
    [[nodiscard]] QSize frame() const;
    [[nodiscard]] QSize room() const;
    void fit();

    std::unique_ptr<Ui::MainWindow> ui_;
};

} // namespace app
