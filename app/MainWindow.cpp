#include "app/MainWindow.h"

#include "app/Localization.h"
#include "platform/Bundle.h"
#include "platform/File.h"
#include "ui_MainWindow.h"

#include <algorithm>
#include <cstddef>
#include <system_error>

#include <QApplication>
#include <QCloseEvent>
#include <QFocusFrame>
#include <QIcon>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QStyle>

namespace app {
namespace {

constexpr int kTight = 6;           // margins and spaces on a small screen
constexpr int kWidth = 540;         // of the window, in which a line has some sixty letters
constexpr QSize kButtonRoom{20, 6}; // around a button's text, beyond what the style gives
constexpr double kHeadingScale = 1.5;

/// The icon in the size in which it is shown, or in twice that, by its pixels as they are: to read
/// a file of any format, Qt loads all its plugins for formats.
QPixmap applicationIcon() {
    constexpr int kSide = 64;
    const bool isDense = qApp->devicePixelRatio() > 1;
    const int side = isDense ? 2 * kSide : kSide;
    const std::size_t size =
        std::size_t{4} * static_cast<unsigned>(side) * static_cast<unsigned>(side);
    const auto bundle = platform::Bundle::mainBundle();
    const auto path = bundle ? bundle->pathForResource(isDense ? "AppIcon@2x.rgba" : "AppIcon.rgba")
                             : std::nullopt;
    std::error_code error;
    const auto pixels = path ? platform::readRegularFile(*path, size, error) : base::Data();
    if (pixels.size() != size) {
        return {};
    }
    QPixmap icon = QPixmap::fromImage(
        QImage(reinterpret_cast<const uchar*>(pixels.data()), side, side, QImage::Format_RGBA8888));
    icon.setDevicePixelRatio(isDense ? 2 : 1);
    return icon;
}

/// The texts of the window description are the keys of the localized texts.
template <class Widget>
void localizeTexts(const QWidget& window) {
    for (auto* widget : window.findChildren<Widget*>()) {
        if (!widget->text().isEmpty()) {
            widget->setText(localized(widget->text().toStdString()));
        }
    }
}

/// The same for what assistive technology says.
void localizeAccessibleTexts(const QWidget& window) {
    for (auto* widget : window.findChildren<QWidget*>()) {
        if (!widget->accessibleName().isEmpty()) {
            widget->setAccessibleName(localized(widget->accessibleName().toStdString()));
        }
        if (!widget->accessibleDescription().isEmpty()) {
            widget->setAccessibleDescription(
                localized(widget->accessibleDescription().toStdString()));
        }
    }
}

void giveRoom(QPushButton& button) {
    button.setMinimumSize(button.sizeHint() + kButtonRoom);
}

void setHeading(QLabel& label) {
    QFont font = label.font();
    font.setPointSizeF(font.pointSizeF() * kHeadingScale);
    font.setBold(true);
    label.setFont(font);
}

} // namespace

MainWindow::MainWindow() : QDialog(nullptr, Qt::Window), ui_(std::make_unique<Ui::MainWindow>()) {
    ui_->setupUi(this);
    localize();
    setLooks();
    connectControls();
}

MainWindow::~MainWindow() = default;

void MainWindow::localize() {
    setLayoutDirection(textDirection());
    ui_->iconLabel->setAccessibleName(QString::fromStdString(productName()));
    localizeTexts<QLabel>(*this);
    localizeTexts<QPushButton>(*this);
    localizeAccessibleTexts(*this);
    setAccessibleDescription(ui_->headingLabel->text());
    ui_->cancelButton->setShortcut(Qt::Key_Escape); // after its text, which resets the shortcut
}

void MainWindow::setLooks() {
    setHeading(*ui_->headingLabel);
    for (auto* button : {ui_->removeButton, ui_->cancelButton, ui_->mainButton}) {
        giveRoom(*button);
    }
    const QPixmap icon = applicationIcon();
    setWindowIcon(icon);
    ui_->iconLabel->setPixmap(icon);
}

void MainWindow::connectControls() {
    connect(ui_->mainButton, &QPushButton::clicked, this, &MainWindow::mainButtonPressed);
    connect(ui_->cancelButton, &QPushButton::clicked, this, &MainWindow::cancelButtonPressed);
    connect(ui_->removeButton, &QPushButton::clicked, this, [this] {
        setRemovalOffered(false); // one press is one removal
        emit removalRequested();
    });
    // Some styles show no focus on a default button, or none before the first Tab.
    auto* focusFrame = new QFocusFrame(this);
    connect(qApp, &QApplication::focusChanged, focusFrame, [=, this](auto* /*old*/, QWidget* now) {
        auto* const button = qobject_cast<QPushButton*>(now);
        focusFrame->setWidget(button);
        if (button != nullptr) {
            ui_->scrollArea->ensureWidgetVisible(button);
        }
    });
    const auto* quit = new QShortcut(QKeySequence::Quit, this);
    connect(quit, &QShortcut::activated, this, &MainWindow::quitRequested);
}

void MainWindow::present() {
    setWindowTitle(QString::fromStdString(productName()));
    fit();
    move(screen()->availableGeometry().center() - QRect({}, size() + frame()).center());
    show();
    raise();
    activateWindow();
    ui_->mainButton->setFocus();
}

void MainWindow::offerRemoval() {
    setRemovalOffered(true);
}

void MainWindow::setRemovalOffered(bool isOffered) {
    for (auto* button : {ui_->removeButton, ui_->cancelButton}) {
        button->setEnabled(isOffered); // assistive technology can press what cannot be seen
        button->setVisible(isOffered);
    }
    ui_->mainButton->setText(localized(isOffered ? "&Keep Subscription" : "&Close"));
    ui_->mainButton->setAccessibleDescription(localized(
        isOffered ? "Closes this helper and keeps your subscription." : "Closes this helper."));
}

/// What a window manager puts round the window, before it has told.
QSize MainWindow::frame() const {
    constexpr int kBorders = 8;
    return {kBorders, kBorders + style()->pixelMetric(QStyle::PM_TitleBarHeight)};
}

QSize MainWindow::room() const {
    return screen()->availableGeometry().size() - frame();
}

/// Takes the size that its texts need, within the screen; what is beyond it can be scrolled to. The
/// user cannot change it, as nothing is gained by more and lines would be cut by less.
void MainWindow::fit() {
    const QSize room = this->room();
    QLayout& layout = *ui_->content->layout();
    const auto needed = [&] {
        layout.activate();
        const int width = std::min(std::max(layout.minimumSize().width(), kWidth), room.width());
        return QSize(width, layout.totalHeightForWidth(width));
    };
    QSize size = needed();
    if (layout.minimumSize().width() > room.width() || size.height() > room.height()) {
        ui_->iconLabel->hide();
        layout.setContentsMargins(kTight, kTight, kTight, kTight);
        for (QLayout* each : {&layout, static_cast<QLayout*>(ui_->textLayout),
                              static_cast<QLayout*>(ui_->buttonLayout)}) {
            each->setSpacing(kTight);
        }
        size = needed();
    }
    if (layout.minimumSize().width() > room.width()) {
        ui_->buttonLayout->setDirection(QBoxLayout::TopToBottom);
        size = needed();
    }
    setFixedSize(size.boundedTo(room));
}

void MainWindow::beginProgress() {
    ui_->spinner->startAnimation();
    ui_->progressSheet->beginSheet(*ui_->content);
    ui_->progressLabel->setFocus();
}

void MainWindow::showProgress(const QString& text) {
    ui_->progressLabel->setText(text);
    if (const int missing = ui_->progressSheet->missingHeight(); missing > 0) {
        setFixedHeight(std::min(height() + missing, room().height()));
        // Not every window manager moves up what has grown beyond the screen, and none at once.
        const QRect available = screen()->availableGeometry();
        const int beyond = frameGeometry().bottom() - available.bottom();
        if (beyond > 0) {
            move(pos().x(), std::max(available.top(), pos().y() - beyond));
        }
    }
}

void MainWindow::endProgress(int returnCode) {
    ui_->progressSheet->endSheet(returnCode);
    ui_->mainButton->setFocus();
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (ui_->progressSheet->isSessionRunning()) {
        event->ignore();
    } else {
        emit quitRequested();
    }
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
    // The second button has Escape as its shortcut. While it is disabled the key must do nothing,
    // rather than close the window, as it does in other dialogs.
    if (event->matches(QKeySequence::Cancel)) {
        return;
    }
    // Return presses the button that has the focus, as people expect who cannot see which is the
    // default one.
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (button != nullptr && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        button->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace app
