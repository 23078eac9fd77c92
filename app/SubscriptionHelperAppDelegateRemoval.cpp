#include "app/ProgressSheet.h"
#include "app/Spinner.h"
#include "app/SubscriptionHelperAppDelegate.h"
#include "app/Texts.h"
#include "housekeeping/HelperUtilities.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/Workspace.h"
#include "store/FastSpringUtilities.h"
#include "ui_MainWindow.h"

#include <system_error>
#include <thread>

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
        setRemovalEnabled(true);
        return;
    }
    spinner_->startAnimation();
    progressSheet_->beginSheet(*ui_->content);
}

// Like the thread that runs it, it ends the process by an uncaught failure: a date of the store
// service's answer that cannot be read.
void SubscriptionHelperAppDelegate::cancelSubscriptionAndLaunchUninstaller() noexcept {
    postProgress("Canceling your subscription ...");
    const std::string store = HelperUtilities::storeID();
    if (!store::FastSpringUtilities::cancelSubscriptionForStore(store, subscriptionReference())) {
        openAccountPage(customerURL());
    }
    postProgress("Launching the Uninstaller ...");
    static_cast<void>(HelperUtilities::launchUninstaller());
    postProgress("Moving this helper to the Trash ...");
    static_cast<void>(trashMe());
    QMetaObject::invokeMethod(this, &SubscriptionHelperAppDelegate::cancelProgress,
                              Qt::BlockingQueuedConnection);
}

void SubscriptionHelperAppDelegate::postProgress(std::string_view key) {
    QMetaObject::invokeMethod(
        this, [this, text = localized(key)] { updateProgress(text); }, Qt::QueuedConnection);
}

void SubscriptionHelperAppDelegate::updateProgress(const QString& text) {
    progressLabel_->setText(text);
}

void SubscriptionHelperAppDelegate::cancelProgress() {
    progressSheet_->endSheet(1);
}

bool SubscriptionHelperAppDelegate::trashMe() {
    const auto bundle = platform::Bundle::mainBundle();
    if (bundle && HelperUtilities::trash(bundle->bundlePath())) {
        return true;
    }
    platform::log("Could not trash '%@'",
                  {bundle ? base::TextArgument(bundle->bundlePath().native()) : std::nullopt});
    return false;
}

} // namespace app
