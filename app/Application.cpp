#include "app/Application.h"

#include "app/Check.h"
#include "app/Modules.h"
#include "app/SubscriptionHelperAppDelegate.h"
#include "Brand.h"
#include "platform/Bundle.h"
#include "platform/Log.h"
#include "platform/Preferences.h"

#include <cstdlib>
#include <filesystem>
#include <string>
#include <system_error>
#include <vector>

#include <QApplication>
#include <QMessageLogContext>
#include <QPalette>
#include <QStyle>

namespace {

/// The state of a check. The last result is the display's.
struct Check {
    bool asJSON = false;
    std::vector<app::CheckResult> results;
};
Check* runningCheck = nullptr; // for the message handler, which cannot get arguments

int finish(Check& check, const std::string& missingDisplay) {
    check.results.push_back(app::displayResult(missingDisplay));
    return app::printCheckResults(check.results, check.asJSON);
}

/// Gathers Qt's messages while it connects to the display. If Qt cannot connect, it sends several
/// and aborts. They become one log line, or the last result of a check, and status 1.
void reportMissingDisplay(QtMsgType type, const QMessageLogContext& /*context*/,
                          const QString& message) {
    thread_local std::string reasons; // separates the messages of Qt's other threads
    reasons += (reasons.empty() ? "" : " ") + message.simplified().toStdString();
    if (type != QtFatalMsg) {
        return;
    }
    if (runningCheck != nullptr) {
        finish(*runningCheck, reasons);
    } else {
        platform::log("No window can be shown: %@", {reasons});
    }
    std::_Exit(EXIT_FAILURE);
}

/// Uses only the bundle's plugins if it contains Qt, because those of another Qt are incompatible.
void useOwnPlugins() {
    const auto bundle = platform::Bundle::mainBundle();
    std::error_code ignored;
    if (bundle && std::filesystem::is_directory(bundle->plugInsPath(), ignored)) {
        QCoreApplication::setLibraryPaths({QString::fromStdString(bundle->plugInsPath())});
        qunsetenv("QT_QPA_PLATFORM_PLUGIN_PATH");
    }
}

/// Makes Qt's own style light or dark like the desktop. Qt 6.4 looks only at the name of the GTK
/// theme, which GNOME's dark style leaves as it is. It keeps the colors when this name changes.
void followDarkStyle() {
    constexpr int kHalf = 128;
    QApplication::setPalette(QPalette()); // the desktop's
    // KDE has colors of its own. For the others Qt takes those of the style.
    static const bool hasStyleColors =
        QApplication::palette() == QApplication::style()->standardPalette();
    if (hasStyleColors) {
        QApplication::setPalette(QApplication::style()->standardPalette());
    }
    const bool isLight = QApplication::palette().color(QPalette::Window).lightness() > kHalf;
    if (!isLight || QApplication::style()->name() != QLatin1String("fusion") ||
        !platform::prefersDark()) {
        return;
    }
    QPalette palette(QColor(50, 50, 50)); // QPalette derives the other colors
    palette.setColor(QPalette::Highlight, QColor(48, 140, 198));
    for (const auto role : {QPalette::WindowText, QPalette::ButtonText}) {
        palette.setColor(QPalette::Disabled, role, QColor(130, 130, 130));
    }
    QApplication::setPalette(palette);
}

/// Follows a theme that changes while the window is open.
class ThemeObserver final : public QObject {
  public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::ThemeChange && watched->isWindowType()) {
            followDarkStyle();
        }
        return false;
    }
};

/// Logs Qt's messages, because Qt itself would wait for a full pipe at standard error.
void logMessage(QtMsgType /*type*/, const QMessageLogContext& /*context*/, const QString& message) {
    platform::log("%@", {message.toStdString()});
    if (message.startsWith(QLatin1String("The Wayland connection "))) {
        app::logInterruptedRemoval(); // Qt calls _exit() next, which skips leaveRunningRemoval()
    }
}

/// Runs at exit(), which Qt calls if the display disappears. Skips the rest of the exit during a
/// removal, because the worker still uses the objects that the exit destroys.
void leaveRunningRemoval() {
    if (app::logInterruptedRemoval()) {
        std::_Exit(EXIT_FAILURE);
    }
}

int runUntilExit() {
    std::atexit(leaveRunningRemoval);
    // The delegate alone decides when the application ends.
    QApplication::setQuitOnLastWindowClosed(false);

    app::SubscriptionHelperAppDelegate delegate;
    // Call it from the event loop, because an exit before the event loop has no effect.
    QMetaObject::invokeMethod(
        &delegate,
        [&delegate] {
            delegate.awakeFromNib();
            delegate.applicationDidFinishLaunching();
        },
        Qt::QueuedConnection);
    const int status = QApplication::exec();
    if (app::logInterruptedRemoval() || delegate.isRemoving()) {
        // Exit without destructors or waiting, because the worker still uses the objects.
        std::_Exit(status);
    }
    return status;
}

} // namespace

int subscriptionHelperApplicationMain(const app::Options& options, int argumentCount,
                                      char** arguments) {
    // Repeat this here, because the process entry has its own C++ library.
    platform::logUncaughtFailures();
    const bool isCheck = options.task == app::Options::Task::Check;
    const std::string missing = app::loadModules(isCheck);
    if (!missing.empty() && !isCheck) {
        platform::log("The application cannot be loaded: %@", {missing});
        return EXIT_FAILURE;
    }
    Check check;
    if (isCheck) {
        check = {options.asJSON, app::runChecks(missing, options.sendsLookup)};
        runningCheck = &check;
    }
    useOwnPlugins();
    qInstallMessageHandler(reportMissingDisplay);
    // Wayland and X11 desktops find the window's desktop entry and icon by these names.
    QApplication::setDesktopFileName(QStringLiteral(HELPER_IDENTIFIER));
    QApplication::setApplicationName(QStringLiteral(HELPER_IDENTIFIER));
    QApplication application(argumentCount, arguments);
    if (isCheck) {
        return finish(check, {});
    }
    qInstallMessageHandler(logMessage);
    followDarkStyle();
    platform::observeDarkPreference(followDarkStyle);
    ThemeObserver themes;
    application.installEventFilter(&themes);
    return runUntilExit();
}
