#pragma once

#include "app/AtomicText.h"

#include <atomic>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#include <QObject>

namespace app {

class MainWindow;

/// Logs one line that names the running step if a removal runs. For an exit that cuts it off. Any
/// thread.
/// @return whether a removal runs.
bool logInterruptedRemoval();

/// The application's delegate: looks the user's subscription up, shows the one window, and carries
/// out the removal. Made on the main thread; all operations belong to that thread except where they
/// say otherwise. The window lives as long as the delegate.
class SubscriptionHelperAppDelegate final : public QObject {
    Q_OBJECT
    Q_DISABLE_COPY_MOVE(SubscriptionHelperAppDelegate)

  public:
    /// Builds the window. It is not shown yet.
    SubscriptionHelperAppDelegate();
    ~SubscriptionHelperAppDelegate() override;

    /// The start-up: obtains the user's subscription reference (userSubscriptionReference()), asks
    /// the store service for the subscription, blocking until it has answered, keeps the reference
    /// and the customer URL, and presents the window. Without a reference or a
    /// subscription it ends the application, silently. A date of the answer that cannot be read is
    /// an uncaught failure and ends the process.
    void awakeFromNib() noexcept;
    /// Does nothing: all is done once the window description is loaded.
    void applicationDidFinishLaunching() {}

    /// Ends the application: the action of the window's main button.
    void mainButton();
    /// Ends the application: the action of the window's second button.
    void cancelButton();
    /// Ends the application with status 0, at once, whatever is under way.
    void exitApp();

    /// Starts the removal worker on a thread of its own, then shows the progress sheet, modal for
    /// the window. Each call starts one worker. When no thread can be started it says so in the
    /// log, and the removal can be started again.
    void startCancellation() noexcept;
    /// The removal worker: cancels the subscription at the store service, or opens the customer's
    /// account page when that fails; starts the uninstaller; moves the helper's bundle to the
    /// Trash. Each step is announced on the sheet and runs whatever became of the one before. Holds
    /// back the signals of a session's end (platform::HeldSignals). At the end logs one line with
    /// the outcome of each step, and waits until the sheet's modal session is ended. Not for the
    /// main thread.
    void cancelSubscriptionAndLaunchUninstaller() noexcept;
    /// Shows a progress text on the sheet.
    void updateProgress(const QString& text);
    /// Ends the sheet's modal session with return code 1. The sheet stays on the screen and its
    /// spinner turns on.
    void cancelProgress();
    /// Moves the helper's own bundle to the Trash. Any thread.
    /// @return false, with one log line, when it could not be moved.
    [[nodiscard]] static bool trashMe();

    /// Whether a removal worker runs. Any thread.
    [[nodiscard]] bool isRemoving() const { return workers_ > 0; }

    /// The address of the customer's account page as the store service sent it, or none. Any
    /// thread.
    [[nodiscard]] AtomicText::Value customerURL() const { return customerURL_.get(); }
    void setCustomerURL(AtomicText::Value url) { customerURL_.set(std::move(url)); }
    /// The user's subscription reference, or none. Any thread.
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
