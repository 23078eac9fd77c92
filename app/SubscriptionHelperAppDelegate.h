#pragma once

#include "app/AtomicText.h"

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <QObject>

class QSessionManager;

namespace app {

class MainWindow;

/// Logs one line that names the running step if an exit interrupts a removal. Any thread.
/// @return true if a removal is running.
bool logInterruptedRemoval();

/// The application's delegate: looks the user's subscription up, shows the window, and runs the
/// removal. Create it on the main thread, and call its operations there unless their description
/// allows other threads. The window lives as long as the delegate. Do not destroy the delegate
/// while isRemoving(), because the worker uses it.
class SubscriptionHelperAppDelegate final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SubscriptionHelperAppDelegate)

  public:
    /// Builds the hidden window.
    SubscriptionHelperAppDelegate();
    ~SubscriptionHelperAppDelegate() override;

    /// Starts up: reads the user's subscription reference (userSubscriptionReference()), looks the
    /// subscription up, blocking until the store service has answered, stores the reference and the
    /// customer URL, and presents the window. Exits silently if the reference or the subscription
    /// is absent. A date that cannot be read is an uncaught failure, which aborts the process.
    void awakeFromNib() noexcept;
    /// Does nothing, because awakeFromNib() has done everything.
    void applicationDidFinishLaunching() {}

    /// Exits. The action of the window's main button.
    void mainButton();
    /// Exits. The action of the window's second button.
    void cancelButton();
    /// Exits immediately with status 0, even during a removal.
    void exitApp();

    /// Starts the removal worker on its own thread, then shows the progress sheet, modal for the
    /// window. Each call starts one worker. If the thread cannot be started, logs one line and
    /// offers the removal again.
    void startCancellation() noexcept;
    /// Runs a removal, on any thread but the main thread. Cancels the subscription at the store
    /// service, or opens the customer's account page if that fails. Then starts the uninstaller,
    /// and moves the helper's bundle to the Trash. Announces each step on the sheet, and runs each
    /// whatever the outcome of the one before. Holds back the session's end
    /// (platform::desktop::holdLogout()) and its signals (platform::HeldSignals). Finally logs one
    /// line with the outcome of each step, and waits until the sheet's modal session has ended.
    void cancelSubscriptionAndLaunchUninstaller() noexcept;
    /// Returns when no removal is in progress, and handles events until then. Called when an X11
    /// session manager asks the application to prepare for the session's end.
    void finishRemoval(QSessionManager& session);
    /// Shows a progress text on the sheet.
    void updateProgress(const QString& text);
    /// Ends the sheet's modal session with return code 1. The sheet stays visible with its turning
    /// spinner.
    void cancelProgress();
    /// Moves the helper's own bundle to the Trash. Any thread.
    /// @return false, with one log line, if the bundle cannot be moved.
    [[nodiscard]] static bool trashMe();

    /// Returns true while a removal worker runs. Any thread.
    [[nodiscard]] bool isRemoving() const { return workers_ > 0; }

    /// Returns the address of the customer's account page as the store service sent it, or
    /// std::nullopt. Any thread.
    [[nodiscard]] AtomicText::Value customerURL() const { return customerURL_.get(); }
    void setCustomerURL(AtomicText::Value url) { customerURL_.set(std::move(url)); }
    /// Returns the user's subscription reference, or std::nullopt. Any thread.
    [[nodiscard]] AtomicText::Value subscriptionReference() const { return reference_.get(); }
    void setSubscriptionReference(AtomicText::Value reference) {
        reference_.set(std::move(reference));
    }

  private:
    void postProgress(std::string_view key);

    std::unique_ptr<MainWindow> window_;
    AtomicText customerURL_;
    AtomicText reference_;
    std::atomic<int> workers_ = 0;
};

} // namespace app
