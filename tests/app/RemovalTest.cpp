// Tests the removal's steps, their order and the progress sheet. The delegate has its real window
// and display. Run it under kit/desktop.py.

#include "app/ProgressSheet.h"
#include "app/Spinner.h"
#include "app/SubscriptionHelperAppDelegate.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/Test.h"

#include <pthread.h>
#include <QAccessible>
#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QLabel>
#include <QPushButton>
#include <QTest>
#include <QThread>

namespace {

namespace fs = std::filesystem;
using app::ProgressSheet;
using test::httpReply;
using test::TestHome;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;

std::vector<std::string> announced;

const std::string kRecord =
    "<subscription><customerUrl>http://127.0.0.1:9/account</customerUrl></subscription>";

/// The delegate with its real window, a store on loopback, and a real bundle and Trash.
class Removal : public testing::Test {
  protected:
    Removal() {
        fs::remove_all(TestHome::path() / "data");
        fs::remove_all(TestHome::temporaryDirectory());
        bundle_.asMainBundle();
        bundle_.withResource("Configuration.strings",
                             "storeid = acme; \"Application Uninstaller\" = Uninstall;");
        bundle_.withScript("Uninstall", "echo ran > '" + note_.native() + "'");
        fs::remove(note_);
        test::writeFile(TestHome::path() / "config" / "com.example.acme-studio.conf",
                        "subscriptionReference=REF-1\n");
        test::setStorePort(server_.port());
    }

    /// Starts up and returns the window when it offers the removal.
    QWidget* startUp() {
        delegate_.awakeFromNib();
        const auto isOffered = [] {
            QWidget* window = QApplication::activeWindow();
            return window != nullptr && child<QPushButton>(*window, "removeButton").isEnabled();
        };
        return QTest::qWaitFor(isOffered, 10000) ? QApplication::activeWindow() : nullptr;
    }

    template <class Widget>
    static Widget& child(QWidget& window, const char* name) {
        return *window.findChild<Widget*>(QString::fromLatin1(name));
    }

    void press(QWidget& window) {
        QTest::mouseClick(&child<QPushButton>(window, "removeButton"), Qt::LeftButton);
    }

    bool waitUntilRemoved() {
        return QTest::qWaitFor([this] { return !delegate_.isRemoving(); }, 20000);
    }

    test::TestHome home_;
    test::TestBundle bundle_{TestHome::path() / "Applications" / "Subscription Helper.app"};
    fs::path note_ = TestHome::path() / "note";
    std::string record_ = kRecord; // the answer to a lookup
    std::function<test::Reply()> cancelReply_ = [] { return httpReply(kRecord); };
    test::LoopbackServer server_{[this](const std::string& target) {
        return target.find("delete") == std::string::npos ? httpReply(record_) : cancelReply_();
    }};
    app::SubscriptionHelperAppDelegate delegate_;
};

TEST_F(Removal, AnnouncesItsStepsAndBlocksTheWindowUntilItsEnd) {
    QWidget* window = startUp();
    ASSERT_NE(window, nullptr);
    std::string duringCancellation;
    cancelReply_ = [&] {
        // The helper's bundle and the uninstaller must stay unchanged during the cancellation.
        duringCancellation = fs::exists(bundle_.path()) && !fs::exists(note_) ? "first" : "late";
        QThread::msleep(300);
        return httpReply(kRecord);
    };
    // Announce a screen reader on the session bus, and wait until this process knows it.
    ASSERT_EQ(std::system("gdbus call --session --dest org.a11y.Bus --object-path /org/a11y/bus "
                          "--method org.freedesktop.DBus.Properties.Set org.a11y.Status IsEnabled "
                          "'<true>' >/dev/null"),
              0);
    ASSERT_TRUE(QTest::qWaitFor([] { return QAccessible::isActive(); }, 10000));
    QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        if (event->type() == QAccessible::NameChanged && event->object()->inherits("QLabel")) {
            const auto name = event->accessibleInterface()->text(QAccessible::Name);
            announced.push_back(name.toStdString());
        }
    });
    child<QPushButton>(*window, "removeButton").setFocus();
    QTest::keyClick(window, Qt::Key_Return); // presses the focused button
    EXPECT_TRUE(child<ProgressSheet>(*window, "progressSheet").isVisible());
    press(*window); // a second press must not start a second removal
    EXPECT_FALSE(window->close());
    QEvent endOfSession(QEvent::Quit); // Qt sends it at a session's end
    QApplication::sendEvent(qApp, &endOfSession);
    EXPECT_FALSE(endOfSession.isAccepted());
    ASSERT_TRUE(waitUntilRemoved());
    QAccessible::installUpdateHandler(nullptr);
    EXPECT_EQ(duringCancellation, "first");
    EXPECT_THAT(announced, ElementsAre(StartsWith("Canceling"), "Launching the Uninstaller ...",
                                       StartsWith("Last step")));
    EXPECT_EQ(server_.targets().size(), 2U);
}

TEST_F(Removal, LeavesTheSheetAndOneButton) {
    QWidget* window = startUp();
    ASSERT_NE(window, nullptr);
    EXPECT_TRUE(child<QLabel>(*window, "noteLabel").isVisible());
    const auto& reference = child<QLabel>(*window, "referenceLabel");
    EXPECT_TRUE(reference.textInteractionFlags() & Qt::TextSelectableByMouse);
    reference.actions().constFirst()->trigger();
    EXPECT_EQ(QApplication::clipboard()->text(), QStringLiteral("REF-1"));
    press(*window);
    ASSERT_TRUE(waitUntilRemoved());
    const auto& sheet = child<ProgressSheet>(*window, "progressSheet");
    EXPECT_TRUE(sheet.isVisible());
    EXPECT_FALSE(sheet.isSessionRunning());
    EXPECT_EQ(sheet.returnCode(), 1);
    const auto& spinner = child<app::Spinner>(*window, "spinner");
    const int steps = spinner.steps();
    EXPECT_TRUE(QTest::qWaitFor([&] { return spinner.steps() > steps + 2; }, 2000));
    const auto& remove = child<QPushButton>(*window, "removeButton");
    EXPECT_FALSE(remove.isVisible() || remove.isEnabled());
    EXPECT_FALSE(child<QPushButton>(*window, "cancelButton").isVisible());
}

TEST_F(Removal, GoesOnWhateverFailsAndOpensNoAddressThatIsNone) {
    cancelReply_ = [] { return httpReply("<error>refused</error>"); };
    const std::tuple<std::optional<std::string>, const char*, const char*> rows[] = {
        {std::nullopt, "", "account page unknown"},
        {"file:///one", "\"Account Page\" = \"file:///two\";", "file:///one"},
        {std::nullopt, "\"Account Page\" = \"file:///two\";", "file:///two"},
        {"", "\"Account Page\" = \"file:///two\";", "file:///two"}};
    for (const auto& [url, page, said] : rows) {
        const test::TestBundle bundle(bundle_.path());
        bundle_.withResource("Configuration.strings",
                             "\"Application Uninstaller\" = missing;" + std::string(page));
        test::writeFile(TestHome::path() / "data" / "Trash", "in the way");
        delegate_.setSubscriptionReference("REF-1");
        delegate_.setCustomerURL(url);
        testing::internal::CaptureStderr();
        delegate_.startCancellation();
        const bool removed = waitUntilRemoved();
        const std::string log = testing::internal::GetCapturedStderr();
        ASSERT_TRUE(removed);
        EXPECT_THAT(log, HasSubstr(said));
        EXPECT_THAT(log, HasSubstr("Uninstaller is not found at path: (null)"));
        EXPECT_THAT(log, HasSubstr("Could not trash '" + bundle_.path().native() + "'"));
        EXPECT_TRUE(fs::exists(bundle_.path()));
    }
}

TEST_F(Removal, CanBeStartedAgainWhenThereIsNoThreadForIt) {
    record_ = "<subscription><customerUrl>file:///one</customerUrl></subscription>";
    QWidget* window = startUp();
    ASSERT_NE(window, nullptr);
    EXPECT_FALSE(child<QLabel>(*window, "noteLabel").isVisible());
    pthread_attr_t usual;
    pthread_attr_t impossible;
    ASSERT_EQ(pthread_getattr_default_np(&usual), 0);
    ASSERT_EQ(pthread_getattr_default_np(&impossible), 0);
    pthread_attr_setstacksize(&impossible, SIZE_MAX / 4 + 1);
    ASSERT_EQ(pthread_setattr_default_np(&impossible), 0);
    testing::internal::CaptureStderr();
    press(*window);
    pthread_setattr_default_np(&usual);
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                HasSubstr("The removal cannot be started: "));
    EXPECT_FALSE(delegate_.isRemoving());
    EXPECT_FALSE(child<ProgressSheet>(*window, "progressSheet").isVisible());
    EXPECT_TRUE(child<QPushButton>(*window, "cancelButton").isVisible());
    press(*window);
    EXPECT_TRUE(waitUntilRemoved());
    EXPECT_EQ(server_.targets().size(), 2U);
}

} // namespace

int main(int argumentCount, char** arguments) {
    const test::TestHome home;
    testing::InitGoogleTest(&argumentCount, arguments);
    QApplication application(argumentCount, arguments);
    return RUN_ALL_TESTS();
}
