// The window as people meet it: in every language, read aloud, in light and dark.
#include "app/Contrast.h"
#include "app/Localization.h"
#include "app/ProgressSheet.h"
#include "platform/ChildProcess.h"
#include "platform/StringsTable.h"
#include "tests/app/DelegateTest.h"

#include <set>

#include <QAccessible>
#include <QImage>
#include <QLabel>

namespace {

namespace fs = std::filesystem;
using platform::StringsTable;

class Window : public test::DelegateTest {
  protected:
    void TearDown() override { unsetenv("LANGUAGE"); }
};

std::ptrdiff_t occurrences(const std::string& text, const char* part) {
    return QString::fromStdString(text).count(QLatin1String(part));
}

void expectAllTextsShown(QDialog& window) {
    for (const auto* widget : window.findChildren<QWidget*>()) {
        if (widget->isVisible() && widget->parentWidget() != nullptr) {
            EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry()))
                << widget->objectName().toStdString();
        }
    }
    for (const auto* label : window.findChildren<QLabel*>()) {
        EXPECT_TRUE(label->text().isEmpty() || label->textFormat() == Qt::PlainText);
        EXPECT_FALSE(label->text().contains(QStringLiteral("account</b>")));
        EXPECT_LE(label->heightForWidth(label->width()), label->height())
            << label->objectName().toStdString();
    }
    for (const auto* button : window.findChildren<QPushButton*>()) {
        EXPECT_GE(button->width(), button->sizeHint().width()) << button->text().toStdString();
    }
}

/// Whatever is shown, or told to assistive technology, is a text of the table.
void expectTextsOf(const StringsTable& table, QWidget& window) {
    std::set<QString> texts{QString()};
    for (const auto& [key, text] : table) {
        texts.insert(QString::fromStdString(text).replace(QLatin1String("%@"),
                                                          QLatin1String("Acme Studio")));
    }
    for (const auto* widget : window.findChildren<QWidget*>()) {
        for (const char* property : {"text", "accessibleName", "accessibleDescription"}) {
            EXPECT_EQ(texts.count(widget->property(property).toString()), 1U)
                << property << " of " << widget->objectName().toStdString();
        }
    }
}

TEST_F(Window, ShowsItsTextsWholeInEveryLanguage) {
    const StringsTable english =
        platform::readStringsTable(fs::path(TEST_RESOURCES) / "en.lproj" / "Localizable.strings");
    setenv("LC_ALL", "en_US.UTF-8", 1);
    int languages = 0;
    for (const auto& entry : fs::directory_iterator(TEST_RESOURCES)) {
        const std::string language = entry.path().stem();
        SCOPED_TRACE(language);
        if (entry.path().extension() != ".lproj") {
            continue;
        }
        ++languages;
        fs::copy(entry.path(), bundle_.path() / "Contents" / "Resources" / entry.path().filename());
        const StringsTable table = platform::readStringsTable(entry.path() / "Localizable.strings");
        EXPECT_EQ(table.size(), english.size());
        for (const auto& [key, text] : english) {
            ASSERT_TRUE(table.contains(key)) << key;
            EXPECT_NE(table.at(key), "") << key;
            EXPECT_EQ(occurrences(table.at(key), "%@"), occurrences(text, "%@")) << key;
            EXPECT_EQ(occurrences(table.at(key), "&"), occurrences(text, "&")) << key;
        }

        setenv("LANGUAGE", language.c_str(), 1);
        app::SubscriptionHelperAppDelegate delegate;
        delegate.awakeFromNib();
        QDialog* window = openWindow();
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(window->windowTitle(), QStringLiteral("Acme Studio"));
        expectAllTextsShown(*window);
        expectTextsOf(table, *window);
        const auto& remove = child<QPushButton>(*window, "removeButton");
        const auto& close = child<QPushButton>(*window, "mainButton");
        EXPECT_NE(remove.shortcut(), close.shortcut());
        EXPECT_EQ(remove.x() > close.x(), language == "ar");
        child<app::ProgressSheet>(*window, "progressSheet")
            .beginSheet(child<QWidget>(*window, "content"));
        for (const auto& [key, text] : english) {
            if (key.ends_with("...")) {
                delegate.updateProgress(app::localized(key));
                QApplication::processEvents();
                expectAllTextsShown(*window);
            }
        }
    }
    EXPECT_EQ(languages, 12);
}

/// The least contrast of a button's text with what is really drawn behind it, beside the text.
double leastContrast(QPushButton& button) {
    const QImage image = button.grab().toImage();
    const QColor text = button.palette().color(QPalette::ButtonText);
    double least = 21;
    for (int y = 4; y < image.height() - 4; ++y) {
        least = std::min(least, app::contrast(image.pixelColor(6, y), text));
    }
    return least;
}

/// Says on the session bus that there is a screen reader, and waits until this process has heard.
bool screenReaderStarts() {
    EXPECT_FALSE(platform::startChildProcess({"/usr/bin/gdbus", "call", "--session", "--dest",
                                              "org.a11y.Bus", "--object-path", "/org/a11y/bus",
                                              "--method", "org.freedesktop.DBus.Properties.Set",
                                              "org.a11y.Status", "IsEnabled", "<true>"}));
    return QTest::qWaitFor([] { return QAccessible::isActive(); }, 10000);
}

std::vector<std::string> announced;

TEST_F(Window, TellsAssistiveTechnologyOfEachStep) {
    QDialog* window = startUp();
    ASSERT_NE(window, nullptr);
    ASSERT_TRUE(screenReaderStarts());
    QAccessible::installUpdateHandler([](QAccessibleEvent* event) {
        if (event->type() == QAccessible::NameChanged) {
            announced.push_back(
                event->accessibleInterface()->text(QAccessible::Name).toStdString());
        }
    });
    for (const char* text : {"one", "two", "three"}) {
        delegate_.updateProgress(QString::fromLatin1(text));
    }
    QAccessible::installUpdateHandler(nullptr);
    EXPECT_EQ(announced, (std::vector<std::string>{"one", "two", "three"}));
}

TEST_F(Window, CanBeReadInLightAndDarkColours) {
    const QPalette light = QApplication::palette();
    QPalette dark(QColor(53, 53, 53), QColor(35, 35, 35));
    dark.setColor(QPalette::Highlight, QColor(42, 130, 218));
    dark.setColor(QPalette::HighlightedText, Qt::black);
    for (const QPalette& palette : {light, dark}) {
        QApplication::setPalette(palette);
        app::SubscriptionHelperAppDelegate delegate;
        delegate.awakeFromNib();
        QDialog* window = openWindow();
        ASSERT_NE(window, nullptr);
        for (auto* button : window->findChildren<QPushButton*>()) {
            EXPECT_GE(leastContrast(*button), app::kReadableContrast)
                << button->objectName().toStdString();
        }
        for (const auto* label : window->findChildren<QLabel*>()) {
            EXPECT_GE(app::contrast(label->palette().color(QPalette::WindowText),
                                    label->palette().color(QPalette::Window)),
                      app::kReadableContrast);
        }
    }
    QApplication::setPalette(light);
}

} // namespace
