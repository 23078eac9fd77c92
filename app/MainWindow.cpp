#include "app/MainWindow.h"

#include "app/Contrast.h"
#include "app/Localization.h"
#include "platform/Bundle.h"
#include "ui_MainWindow.h"

#include <QCloseEvent>
#include <QIcon>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>

namespace app {
namespace {

constexpr int kIconSide = 64;
constexpr QSize kButtonRoom{20, 6}; // around a button's text, beyond what the style gives
constexpr double kHeadingScale = 1.5;

QIcon applicationIcon() {
    const auto bundle = platform::Bundle::mainBundle();
    const auto path = bundle ? bundle->pathForResource("AppIcon.png") : std::nullopt;
    return path ? QIcon(QString::fromStdString(path->native())) : QIcon();
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

/// Makes the button stand out as the one that is meant by default, in the user's own colours, made
/// darker or lighter as far as its text needs it to be read.
void setPrimary(QPushButton& button) {
    QPalette palette = button.palette();
    for (const auto group : {QPalette::Active, QPalette::Inactive}) {
        const QColor text = palette.color(group, QPalette::HighlightedText);
        palette.setColor(group, QPalette::Button,
                         readableBackground(palette.color(group, QPalette::Highlight), text));
        palette.setColor(group, QPalette::ButtonText, text);
    }
    button.setPalette(palette);
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
    setWindowTitle(QString::fromStdString(productName()));
    localizeTexts<QLabel>(*this);
    localizeTexts<QPushButton>(*this);
    localizeAccessibleTexts(*this);
    ui_->cancelButton->setShortcut(Qt::Key_Escape); // after its text, which resets the shortcut
}

void MainWindow::setLooks() {
    setHeading(*ui_->headingLabel);
    setPrimary(*ui_->mainButton);
    for (auto* button : {ui_->removeButton, ui_->cancelButton, ui_->mainButton}) {
        giveRoom(*button);
    }
    const QIcon icon = applicationIcon();
    setWindowIcon(icon);
    ui_->iconLabel->setPixmap(icon.pixmap({kIconSide, kIconSide}, devicePixelRatioF()));
}

void MainWindow::connectControls() {
    connect(ui_->mainButton, &QPushButton::clicked, this, &MainWindow::mainButtonPressed);
    connect(ui_->cancelButton, &QPushButton::clicked, this, &MainWindow::cancelButtonPressed);
    connect(ui_->removeButton, &QPushButton::clicked, this, [this] {
        setRemovalEnabled(false); // one press is one removal
        emit removalRequested();
    });
    const auto* quit = new QShortcut(QKeySequence::Quit, this);
    connect(quit, &QShortcut::activated, this, &MainWindow::quitRequested);
}

void MainWindow::present() {
    adjustSize();
    move(screen()->availableGeometry().center() - rect().center());
    show();
    raise();
    activateWindow();
    ui_->mainButton->setFocus();
}

void MainWindow::offerRemoval() {
    setRemovalEnabled(true);
}

void MainWindow::setRemovalEnabled(bool isEnabled) {
    ui_->removeButton->setEnabled(isEnabled);
    ui_->cancelButton->setEnabled(isEnabled);
}

void MainWindow::beginProgress() {
    ui_->spinner->startAnimation();
    ui_->progressSheet->beginSheet(*ui_->content);
}

void MainWindow::showProgress(const QString& text) {
    ui_->progressLabel->setText(text);
}

void MainWindow::endProgress(int returnCode) {
    ui_->progressSheet->endSheet(returnCode);
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
    if (!event->matches(QKeySequence::Cancel)) {
        QDialog::keyPressEvent(event);
    }
}

} // namespace app
