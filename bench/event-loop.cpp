// Runs a removal in the real window with an uninstaller of 256 MiB. Prints two times in
// microseconds: the longest gap between two turns of the event loop, and the time from the click
// until the progress sheet is painted. Needs a display.
#include "app/SubscriptionHelperAppDelegate.h"
#include "Brand.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/TestHome.h"

#include <algorithm>
#include <filesystem>
#include <iostream>

#include <QApplication>
#include <QElapsedTimer>
#include <QPushButton>
#include <QTimer>

namespace {

constexpr std::uintmax_t kSize = std::uintmax_t{256} << 20U;
const char* const kAnswer = "<subscription/>";

/// Processes events until a condition holds.
template <class Condition>
void runUntil(Condition condition) {
    while (!condition()) {
        QApplication::processEvents(QEventLoop::AllEvents, 10);
    }
}

/// Records the time of a widget's first paint event.
class PaintWatch final : public QObject {
  public:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::Paint && time < 0) {
            watched->event(event);
            time = sinceClick.nsecsElapsed();
            return true;
        }
        return false;
    }

    QElapsedTimer sinceClick;
    qint64 time = -1;
};

} // namespace

int main(int argumentCount, char** arguments) {
    const test::TestHome home;
    QApplication application(argumentCount, arguments);
    const test::TestBundle bundle(test::TestHome::path() / "Applications" / "Helper.app");
    bundle.asMainBundle();
    bundle.withResource("Configuration.strings", "\"Application Uninstaller\" = Uninstall;");
    bundle.withScript("Uninstall", "exit 0");
    test::writeFile(bundle.executable("Uninstall"), std::string(kSize, 'x'), true);
    test::writeFile(test::TestHome::path() / "config" / (HELPER_PRODUCT_DOMAIN ".conf"),
                    "subscriptionReference=REF\n");
    const test::LoopbackServer server(test::httpReply(kAnswer));
    test::setStorePort(server.port());

    app::SubscriptionHelperAppDelegate delegate;
    delegate.awakeFromNib();
    runUntil([] {
        const QWidget* window = QApplication::activeWindow();
        return window != nullptr && window->findChild<QPushButton*>("removeButton")->isEnabled();
    });
    QElapsedTimer sinceTurn;
    qint64 longest = 0;
    QTimer turn;
    QObject::connect(&turn, &QTimer::timeout, [&] {
        longest = std::max(longest, sinceTurn.nsecsElapsed());
        sinceTurn.start();
    });
    sinceTurn.start();
    turn.start(0);
    const QWidget& window = *QApplication::activeWindow();
    PaintWatch painted;
    // Watch the label, because it is the last of the sheet's widgets to be painted.
    window.findChild<QWidget*>("progressLabel")->installEventFilter(&painted);
    painted.sinceClick.start();
    window.findChild<QPushButton*>("removeButton")->click();
    runUntil([&] { return !delegate.isRemoving(); });
    std::cout << longest / 1000 << " " << painted.time / 1000 << "\n";
}
