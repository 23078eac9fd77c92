#include "app/SubscriptionHelperAppDelegate.h"

#include "app/Localization.h"
#include "app/MainWindow.h"
#include "app/Modules.h"
#include "app/SubscriptionReference.h"
#include "Brand.h"
#include "housekeeping/HelperUtilities.h"
#include "platform/Bundle.h"
#include "platform/Desktop.h"
#include "platform/HeldSignals.h"
#include "platform/Log.h"
#include "platform/Workspace.h"
#include "store/FastSpringUtilities.h"

#include <system_error>
#include <thread>

#include <QApplication>
#include <QEventLoop>
#include <QSessionManager>

namespace app {

using housekeeping::HelperUtilities;

namespace {

/// A step of the removal: its name in the log, and the key of its progress text.
struct Step {
    const char* name;
    const char* progress;
};
constexpr Step kCancel{"canceling the subscription",
                       "Canceling your subscription. This can take up to half a minute."};
constexpr Step kUninstall{"starting the uninstaller", "Launching the Uninstaller ..."};
constexpr Step kTrash{
    "moving the bundle to the Trash",
    "Last step: moving this helper to the Trash. Once you can press Close, the helper has "
    "finished.\n\nYour subscription ends only if the store confirms it. If your account page "
    "opened "
    "in the browser, cancel there. If no confirmation arrives, contact %@ support and quote the "
    "reference below."};

/// The name of the step that the removal worker carries out, or null if it does not run. For all
/// delegates, because the end of the process reads it.
std::atomic<const char*> runningStep = nullptr;

/// Opens the page for canceling the subscription.
/// @return the outcome for the log.
std::string openAccountPage(const std::string& page) {
    if (page.empty()) {
        return "account page unknown";
    }
    const auto error = platform::workspace::openURL(page);
    return error ? "account page not opened (" + error.message() + ")"
                 : "account page passed to the opener";
}

} // namespace

bool logInterruptedRemoval() {
    const char* const step = runningStep;
    if (step != nullptr) {
        platform::log("The removal was interrupted while %@", {step});
    }
    return step != nullptr;
}

SubscriptionHelperAppDelegate::SubscriptionHelperAppDelegate()
    : window_(std::make_unique<MainWindow>()) {
    using Delegate = SubscriptionHelperAppDelegate;
    connect(window_.get(), &MainWindow::mainButtonPressed, this, &Delegate::mainButton);
    connect(window_.get(), &MainWindow::cancelButtonPressed, this, &Delegate::cancelButton);
    connect(window_.get(), &MainWindow::removalRequested, this, &Delegate::startCancellation);
    connect(window_.get(), &MainWindow::quitRequested, this, &Delegate::exitApp);
    for (const auto request : {&QApplication::commitDataRequest, &QApplication::saveStateRequest}) {
        connect(qApp, request, this, &Delegate::finishRemoval);
    }
}

SubscriptionHelperAppDelegate::~SubscriptionHelperAppDelegate() = default;

void SubscriptionHelperAppDelegate::awakeFromNib() noexcept {
    const std::string store = HelperUtilities::storeID();
    std::error_code error;
    const auto reference = userSubscriptionReference(error);
    if (error) {
        platform::log("Cannot read %@: %@", {subscriptionReferenceFile(), error.message()});
    }
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
    const std::string page = HelperUtilities::accountPage(customerURL());
    window_->present(*reference, platform::workspace::isOpenable(page));
}

void SubscriptionHelperAppDelegate::mainButton() {
    exitApp();
}

void SubscriptionHelperAppDelegate::cancelButton() {
    exitApp();
}

void SubscriptionHelperAppDelegate::exitApp() {
    // Avoid quit(), because it asks the windows first, and one with a modal sheet would refuse.
    QApplication::exit(0);
}

void SubscriptionHelperAppDelegate::startCancellation() noexcept {
    platform::Bundle::findMainBundle(); // the user may have moved it since the start
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
    // Show the sheet only now, because the worker's thread is certain to run.
    window_->beginProgress();
}

// Like its thread, this function aborts the process on an uncaught failure: an unreadable date in
// the store service's answer.
void SubscriptionHelperAppDelegate::cancelSubscriptionAndLaunchUninstaller() noexcept {
    const platform::HeldSignals heldSignals;
    const auto begin = [this](const Step& step) {
        runningStep = step.name;
        postProgress(step.progress);
    };
    begin(kCancel);
    if (const std::string failure = loadModules(true); !failure.empty()) {
        platform::log("What the removal needs cannot be loaded: %@", {failure});
    }
    const auto heldLogout =
        platform::desktop::holdLogout(HELPER_IDENTIFIER, localized(kCancel.progress).toStdString());
    const std::string store = HelperUtilities::storeID();
    const bool isCanceled =
        store::FastSpringUtilities::cancelSubscriptionForStore(store, subscriptionReference());
    const std::string cancellation =
        isCanceled
            ? "confirmed"
            : "not confirmed, " + openAccountPage(HelperUtilities::accountPage(customerURL()));
    begin(kUninstall);
    const bool isConfigured = !HelperUtilities::uninstallerName().empty();
    const bool isLaunched = HelperUtilities::launchUninstaller();
    begin(kTrash);
    const bool isTrashed = trashMe();
    runningStep = nullptr;
    platform::log("Removal ended. Cancellation: %@. Uninstaller: %@. Bundle: %@",
                  {cancellation,
                   !isConfigured ? "not configured"
                   : isLaunched  ? "started"
                                 : "not started",
                   isTrashed ? "moved to the Trash" : "not moved to the Trash"});
    // Wait, because isRemoving() must be true until the window is usable again.
    QMetaObject::invokeMethod(this, &SubscriptionHelperAppDelegate::cancelProgress,
                              Qt::BlockingQueuedConnection);
}

void SubscriptionHelperAppDelegate::finishRemoval(QSessionManager& session) {
    if (!window_->isInProgress()) {
        return;
    }
    session.allowsInteraction();   // some session managers then wait without a limit
    if (window_->isInProgress()) { // may have ended, because the question handles events
        QEventLoop removal;        // exit() also ends it
        connect(window_.get(), &MainWindow::progressEnded, &removal, &QEventLoop::quit);
        removal.exec();
    }
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
