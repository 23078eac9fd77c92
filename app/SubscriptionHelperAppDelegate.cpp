#include "app/SubscriptionHelperAppDelegate.h"

#include "app/Localization.h"
#include "app/MainWindow.h"
#include "app/SubscriptionReference.h"
#include "housekeeping/HelperUtilities.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/Workspace.h"
#include "store/FastSpringUtilities.h"

#include <system_error>
#include <thread>

#include <QApplication>

namespace app {

using housekeeping::HelperUtilities;

namespace {

/// Where the customer can cancel what the store did not. The worker goes on whatever becomes of it.
void openAccountPage(const AtomicText::Value& url) {
    if (url) {
        static_cast<void>(platform::workspace::openURL(*url));
    } else {
        platform::log("The cancellation was not confirmed, and the store named no account page");
    }
}

} // namespace

SubscriptionHelperAppDelegate::SubscriptionHelperAppDelegate()
    : window_(std::make_unique<MainWindow>()) {
    using Delegate = SubscriptionHelperAppDelegate;
    connect(window_.get(), &MainWindow::mainButtonPressed, this, &Delegate::mainButton);
    connect(window_.get(), &MainWindow::cancelButtonPressed, this, &Delegate::cancelButton);
    connect(window_.get(), &MainWindow::removalRequested, this, &Delegate::startCancellation);
    connect(window_.get(), &MainWindow::quitRequested, this, &Delegate::exitApp);
}

SubscriptionHelperAppDelegate::~SubscriptionHelperAppDelegate() = default;

void SubscriptionHelperAppDelegate::awakeFromNib() noexcept {
    const std::string store = HelperUtilities::storeID();
    const auto reference = userSubscriptionReference();
    if (!reference) {
        exitApp();
        return;
    }
    const auto subscription = store::FastSpringUtilities::subscriptionForStore(store, reference);
    if (!subscription) {
        exitApp();
        return;
    }
    setSubscriptionReference(reference);
    setCustomerURL(subscription->customerURL);
    window_->present();
}

void SubscriptionHelperAppDelegate::mainButton() {
    exitApp();
}

void SubscriptionHelperAppDelegate::cancelButton() {
    exitApp();
}

void SubscriptionHelperAppDelegate::exitApp() {
    // Not quit(), which asks the windows first: one with a modal sheet would refuse.
    QApplication::exit(0);
}

void SubscriptionHelperAppDelegate::startCancellation() noexcept {
    ++workers_;
    try {
        std::thread([this] {
            cancelSubscriptionAndLaunchUninstaller();
            --workers_;
        }).detach();
    } catch (const std::system_error& failure) {
        --workers_;
        platform::log("The removal cannot be started: %@", {failure.what()});
        window_->offerRemoval();
        return;
    }
    // The worker runs by now: the sheet tells of what has begun, and never of what could not.
    window_->beginProgress();
}

// Like the thread that runs it, it ends the process by an uncaught failure: a date of the store
// service's answer that cannot be read.
void SubscriptionHelperAppDelegate::cancelSubscriptionAndLaunchUninstaller() noexcept {
    platform::workspace::prepareTrash();
    postProgress("Canceling your subscription ...");
    const std::string store = HelperUtilities::storeID();
    if (!store::FastSpringUtilities::cancelSubscriptionForStore(store, subscriptionReference())) {
        openAccountPage(customerURL());
    }
    postProgress("Launching the Uninstaller ...");
    static_cast<void>(HelperUtilities::launchUninstaller());
    postProgress(
        "Moving this helper to the Trash. This is the last step: once you can press Close, you "
        "are done.\n\nIf your account page opened in the browser, please finish canceling "
        "there.");
    static_cast<void>(trashMe());
    // Waits, so that isRemoving() is true until the window can be used again.
    QMetaObject::invokeMethod(this, &SubscriptionHelperAppDelegate::cancelProgress,
                              Qt::BlockingQueuedConnection);
}

void SubscriptionHelperAppDelegate::postProgress(std::string_view key) {
    QMetaObject::invokeMethod(
        this, [this, text = localized(key)] { updateProgress(text); }, Qt::QueuedConnection);
}

void SubscriptionHelperAppDelegate::updateProgress(const QString& text) {
    window_->showProgress(text);
}

void SubscriptionHelperAppDelegate::cancelProgress() {
    window_->endProgress(1);
}

bool SubscriptionHelperAppDelegate::trashMe() {
    const auto bundle = platform::Bundle::mainBundle();
    if (bundle && HelperUtilities::trash(bundle->bundlePath())) {
        return true;
    }
    platform::log("Could not trash '%@'",
                  {bundle ? base::FormatArgument(bundle->bundlePath().native()) : std::nullopt});
    return false;
}

} // namespace app
