// Tests the window in every language and style, in light and dark, on this screen at this scale.
// CMake also runs it on small screens and at twice the scale.
#include "app/Localization.h"
#include "app/MainWindow.h"
#include "app/ProgressSheet.h"
#include "platform/StringsTable.h"
#include "tests/support/Test.h"

#include <cmath>
#include <map>
#include <set>

#include <QAccessible>
#include <QApplication>
#include <QElapsedTimer>
#include <QImage>
#include <QLabel>
#include <QLayout>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>
#include <QScrollBar>
#include <QSignalSpy>
#include <QStyle>
#include <QTest>
#include <QThread>

namespace {

namespace fs = std::filesystem;
using platform::StringsTable;

/// Returns the contrast ratio of two colors by the Web Content Accessibility Guidelines 2.1.
double contrast(const QColor& one, const QColor& other) {
    const auto luminance = [](const QColor& color) {
        const auto linear = [](double part) {
            return part <= 0.03928 ? part / 12.92 : std::pow((part + 0.055) / 1.055, 2.4);
        };
        return 0.05 + 0.2126 * linear(color.redF()) + 0.7152 * linear(color.greenF()) +
               0.0722 * linear(color.blueF());
    };
    const auto [dark, light] = std::minmax({luminance(one), luminance(other)});
    return light / dark;
}

/// Returns the highest contrast with a widget's most frequent color, without the widget's border.
double contrastIn(QWidget& widget) {
    const QImage image = widget.grab(widget.rect().adjusted(7, 7, -7, -7)).toImage();
    std::map<QRgb, int> colors;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            ++colors[image.pixel(x, y)];
        }
    }
    const auto byCount = [](const auto& one, const auto& other) {
        return one.second < other.second;
    };
    const QColor ground = std::max_element(colors.begin(), colors.end(), byCount)->first;
    double most = 1;
    for (const auto& [color, count] : colors) {
        most = std::max(most, contrast(color, ground));
    }
    return most;
}

/// Returns the highest contrast between the four points at the left edge of an image, halfway down.
double edgeContrast(const QImage& image) {
    double most = 1;
    for (int x = 1; x < 4 * image.devicePixelRatio(); ++x) {
        most = std::max(most, contrast(image.pixelColor(0, image.height() / 2),
                                       image.pixelColor(x, image.height() / 2)));
    }
    return most;
}

class Window : public testing::Test {
  protected:
    Window() {
        setenv("LC_ALL", "en_US.UTF-8", 1);
        bundle_.asMainBundle();
        fs::copy(TEST_RESOURCES, bundle_.path() / "Contents" / "Resources",
                 fs::copy_options::recursive);
    }
    void TearDown() override {
        unsetenv("LANGUAGE");
        QApplication::setStyle("fusion");
        QApplication::setPalette(QApplication::style()->standardPalette());
        QApplication::setFont(QFont());
    }

    test::TestHome home_;
    test::TestBundle bundle_{test::TestHome::path() / "Applications" / "Subscription Helper.app"};
};

void present(app::MainWindow& window) {
    window.present("Acme Studio", true); // as the product, so that one comparison fits all texts
    ASSERT_TRUE(QTest::qWaitForWindowActive(&window));
    window.offerRemoval(); // skips the second in which the button is disabled
}

template <class Widget>
Widget& child(const QWidget& window, const char* name) {
    return *window.findChild<Widget*>(QString::fromLatin1(name));
}

/// Checks that the screen, the window and the containing widgets show all widgets in full.
void expectWhole(QWidget& window, const std::string& language) {
    SCOPED_TRACE(language);
    EXPECT_TRUE(window.screen()->availableGeometry().contains(window.frameGeometry()));
    const auto& content = *window.findChild<QWidget*>("content");
    EXPECT_LE(content.width(), window.width());
    EXPECT_GE(content.height(), content.layout()->totalHeightForWidth(content.width()));
    for (const auto* widget : window.findChildren<QWidget*>()) {
        const auto* label = qobject_cast<const QLabel*>(widget);
        const auto* button = qobject_cast<const QPushButton*>(widget);
        const std::string name = widget->objectName().toStdString();
        if (!widget->isVisible() || (label == nullptr && button == nullptr)) {
            continue;
        }
        EXPECT_TRUE(widget->parentWidget()->rect().contains(widget->geometry())) << name;
        if (label != nullptr) {
            const int needed = label->QLabel::heightForWidth(label->width());
            EXPECT_LE(needed, widget->height()) << name;
            EXPECT_EQ(label->heightForWidth(label->width()), needed) << name;
        }
        EXPECT_LE(widget->minimumSizeHint().width(), widget->width()) << name;
        EXPECT_TRUE(name != "iconLabel" ||
                    label->pixmap().deviceIndependentSize() == QSizeF(64, 64));
        EXPECT_TRUE(label == nullptr || name == "iconLabel" || label->textFormat() == Qt::PlainText)
            << name;
    }
}

/// Waits until the window fits a new style, because a busy display resizes it late.
void waitUntilWhole(const QWidget& window) {
    QTest::qWait(50);
    (void)QTest::qWaitFor([&] {
        const auto labels = window.findChildren<const QLabel*>();
        return window.screen()->availableGeometry().contains(window.frameGeometry()) &&
               child<QWidget>(window, "content").width() <= window.width() &&
               std::all_of(labels.begin(), labels.end(), [](const QLabel* label) {
                   return label->QLabel::heightForWidth(label->width()) <= label->height();
               });
    });
}

QString breakable(QString text) {
    return text.replace(QChar::Nbsp, QLatin1Char(' '));
}

/// Checks that all texts for people and assistive technology are in the table.
void expectTextsOf(const StringsTable& table, QWidget& window) {
    std::set<QString> texts{QString(), QStringLiteral("Acme Studio")};
    for (const auto& [key, text] : table) {
        texts.insert(breakable(QString::fromStdString(text).replace(QLatin1String("%@"),
                                                                    QLatin1String("Acme Studio"))));
    }
    for (const auto* widget : window.findChildren<QWidget*>()) {
        for (const char* property : {"text", "accessibleName", "accessibleDescription"}) {
            EXPECT_EQ(texts.count(breakable(widget->property(property).toString())), 1U)
                << property << " of " << widget->objectName().toStdString();
        }
    }
}

void save(QWidget& window, const std::string& name) {
    if (const char* folder = std::getenv("HELPER_PICTURES")) {
        window.grab().save(QString::fromStdString(folder + ("/" + name + ".png")));
    }
}

TEST_F(Window, ShowsItsTextsWholeInEveryLanguage) {
    int languages = 0;
    for (const auto& entry : fs::directory_iterator(TEST_RESOURCES)) {
        const std::string language = entry.path().stem();
        if (entry.path().extension() != ".lproj") {
            continue;
        }
        ++languages;
        const StringsTable table = platform::readStringsTable(entry.path() / "Localizable.strings");
        setenv("LANGUAGE", language.c_str(), 1);
        app::MainWindow window;
        present(window);
        EXPECT_EQ(window.windowTitle(), QStringLiteral("Acme Studio"));
        const auto& scrollBar = *child<QScrollArea>(window, "scrollArea").verticalScrollBar();
        EXPECT_EQ(scrollBar.value(), 0);
        EXPECT_FALSE(scrollBar.maximum() > 0 && child<QLabel>(window, "iconLabel").isVisible())
            << language;
        expectTextsOf(table, window);
        expectWhole(window, language);
        save(window, "window-" + language);
        auto& remove = child<QPushButton>(window, "removeButton");
        const auto& main = child<QPushButton>(window, "mainButton");
        EXPECT_TRUE(remove.x() == main.x() || (remove.x() > main.x()) == (language == "ar"));
        remove.click();
        window.offerRemoval(); // again, as if the worker could not be started
        expectTextsOf(table, window);
        EXPECT_TRUE(child<QLabel>(window, "mainLabel").isVisible());
        remove.setFocus(); // scrolls to it
        remove.click();
        expectTextsOf(table, window);
        EXPECT_FALSE(child<QLabel>(window, "mainLabel").isVisible());
        EXPECT_EQ(window.accessibleDescription(), QString());
        window.beginProgress();
        const auto& sheet = child<app::ProgressSheet>(window, "progressSheet");
        for (const char* step : {"Canceling your", "Launching", "Last step"}) {
            const auto key = table.lower_bound(step)->first;
            window.showProgress(app::localized(key));
            QApplication::processEvents();
            expectWhole(window, language + ": " + key);
            EXPECT_TRUE(window.rect().contains(sheet.geometry())) << language;
            EXPECT_LT(sheet.geometry().bottom(), main.mapTo(&window, QPoint()).y()) << language;
        }
        window.endProgress(1);
        save(window, "end-" + language);
    }
    EXPECT_EQ(languages, 12);
}

TEST_F(Window, OffersTheRemovalOnceItHasBeenSeenForASecond) {
    app::MainWindow window;
    const QSignalSpy removals(&window, &app::MainWindow::removalRequested);
    QElapsedTimer sincePresented;
    sincePresented.start();
    window.present("", false);
    QThread::msleep(300); // a slow screen
    ASSERT_TRUE(QTest::qWaitForWindowExposed(&window));
    auto& remove = child<QPushButton>(window, "removeButton");
    QTest::mouseClick(window.windowHandle(), Qt::LeftButton, {},
                      remove.mapTo(&window, remove.rect().center()));
    QTest::keyClick(&window, Qt::Key_U, Qt::AltModifier);
    QAccessible::queryAccessibleInterface(&remove)->actionInterface()->doAction(
        QAccessibleActionInterface::pressAction());
    EXPECT_TRUE(QTest::qWaitFor([&] { return remove.isEnabled(); }));
    EXPECT_GE(sincePresented.elapsed(), 1300);
    EXPECT_EQ(removals.count(), 0);
}

TEST_F(Window, CanBeReadAndShowsItsFocusInEveryStyle) {
    QPalette dark(QColor(53, 53, 53), QColor(35, 35, 35));
    dark.setColor(QPalette::Highlight, QColor(42, 130, 218));
    const std::tuple<const char*, const char*, std::optional<QPalette>> rows[] = {
        {"light", "fusion", std::nullopt},    {"dark", "fusion", dark},
        {"adwaita", "adwaita", std::nullopt}, {"adwaita-dark", "adwaita-dark", std::nullopt},
        {"windows", "windows", std::nullopt},
    };
    for (const auto& [name, style, palette] : rows) {
        SCOPED_TRACE(name);
        app::MainWindow window;
        present(window);
        // The theme changes while the window is open.
        ASSERT_NE(QApplication::setStyle(QString::fromLatin1(style)), nullptr);
        QApplication::setPalette(palette.value_or(QApplication::style()->standardPalette()));
        QApplication::setFont(QFont(QStringLiteral("sans"), 14));
        waitUntilWhole(window);
        expectWhole(window, name);
        EXPECT_GE(contrastIn(child<QLabel>(window, "mainLabel")), 4.5);
        auto& main = child<QPushButton>(window, "mainButton");
        for (auto* button : window.findChildren<QPushButton*>()) {
            SCOPED_TRACE(button->objectName().toStdString());
            button->setFocus();
            // Some styles fade a button in.
            EXPECT_TRUE(QTest::qWaitFor([&] { return contrastIn(*button) >= 4.5; }));
            const QRect place(button->mapTo(&window, QPoint(-4, -4)), button->size() + QSize(8, 8));
            const QImage focused = window.grab(place).toImage();
            (button == &main ? &child<QPushButton>(window, "cancelButton") : &main)->setFocus();
            EXPECT_GE(contrastIn(*button), 4.5);
            EXPECT_TRUE(window.grab(place).toImage() != focused);
            EXPECT_GE(edgeContrast(focused), 3);
        }
        save(window, std::string("style-") + name);
        window.beginProgress();
        window.showProgress(QStringLiteral("Working"));
        EXPECT_GE(contrastIn(child<QLabel>(window, "progressLabel")), 4.5);
        auto& sheet = child<app::ProgressSheet>(window, "progressSheet");
        EXPECT_GE(edgeContrast(sheet.grab().toImage()), 3);
        // The window grows for a text that is higher than the sheet, and again for a larger font.
        const QRect screen = window.screen()->availableGeometry();
        window.move(screen.bottomLeft() - QPoint(0, window.frameGeometry().height()));
        window.showProgress(QStringLiteral("Working ").repeated(70));
        EXPECT_TRUE(screen.contains(window.frameGeometry()));
        QApplication::setFont(QFont(QStringLiteral("sans"), 18));
        QTest::qWait(50);
        EXPECT_TRUE(QTest::qWaitFor(
            [&] { return sheet.missingHeight() <= 0 || window.height() > screen.height() - 40; }));
        auto& scrollBar = *child<QScrollArea>(window, "scrollArea").verticalScrollBar();
        scrollBar.setValue(scrollBar.maximum());
        EXPECT_LT(sheet.geometry().bottom(), main.mapTo(&window, QPoint()).y());
        window.setFixedHeight(100); // some window managers ignore the fixed size
        window.setFixedHeight(90);
        EXPECT_EQ(child<QWidget>(window, "backdrop").geometry(), window.rect());
        // Last, because the window manager may restore the place of the window late.
        window.setWindowState(Qt::WindowMaximized);
        EXPECT_FALSE(window.isMaximized());
    }
}

} // namespace
