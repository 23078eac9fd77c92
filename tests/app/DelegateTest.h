#pragma once

#include "app/SubscriptionHelperAppDelegate.h"
#include "tests/support/LoopbackServer.h"
#include "tests/support/Test.h"

#include <QApplication>
#include <QDialog>
#include <QPushButton>
#include <QTest>

namespace test {

inline const std::string kRecord =
    "<subscription><customerUrl>http://127.0.0.1:9/<b>account</b></customerUrl></subscription>";

/// The delegate with its real window, a store on loopback, and a real bundle and Trash. Runs under
/// demo/desktop.py.
class DelegateTest : public testing::Test {
  protected:
    DelegateTest() {
        std::filesystem::remove_all(TestHome::path() / "data");
        std::filesystem::remove_all(TestHome::temporaryDirectory());
        bundle_.asMainBundle();
        bundle_.withResource("Configuration.strings",
                             "storeid = acme; \"Application Uninstaller\" = Uninstall;");
        bundle_.withScript("Uninstall", "echo ran > '" + note_.native() + "'");
        std::filesystem::remove(note_);
        setReference("REF-1");
        test::setStorePort(server_.port());
    }

    static void setReference(const std::string& reference) {
        test::writeFile(TestHome::path() / "config" / "com.example.acme-studio.conf",
                        "subscriptionReference=" + reference + "\n");
    }

    /// The window once the start-up has presented it.
    QDialog* startUp() {
        delegate_.awakeFromNib();
        return openWindow();
    }

    static QDialog* openWindow() {
        for (auto* widget : QApplication::topLevelWidgets()) {
            if (auto* window = qobject_cast<QDialog*>(widget);
                window != nullptr && window->isVisible()) {
                return QTest::qWaitForWindowActive(window) ? window : nullptr;
            }
        }
        return nullptr;
    }

    template <class Widget>
    static Widget& child(QDialog& window, const char* name) {
        return *window.findChild<Widget*>(QString::fromLatin1(name));
    }

    void press(QDialog& window) {
        QTest::mouseClick(&child<QPushButton>(window, "removeButton"), Qt::LeftButton);
    }

    bool waitUntilRemoved() {
        return QTest::qWaitFor([this] { return !delegate_.isRemoving(); }, 20000);
    }

    test::TestHome home_;
    test::TestBundle bundle_{TestHome::path() / "Applications" / "Subscription Helper.app"};
    std::filesystem::path note_ = TestHome::path() / "note";
    std::function<test::Reply()> cancelReply_ = [] { return httpReply(kRecord); };
    test::LoopbackServer server_{[this](const std::string& target) {
        return target.find("delete") == std::string::npos ? httpReply(kRecord) : cancelReply_();
    }};
    app::SubscriptionHelperAppDelegate delegate_;
};

} // namespace test
