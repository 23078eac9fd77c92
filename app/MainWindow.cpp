#include "app/MainWindow.h"

#include "app/ApplicationIcon.h"
#include "app/Density.h"
#include "app/FocusRing.h"
#include "app/Localization.h"
#include "ui_MainWindow.h"

#include <algorithm>
#include <chrono>

#include <QAction>
#include <QApplication>
#include <QClipboard>
#include <QCloseEvent>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>
#include <QStyle>
#include <QWindow>

namespace app {
namespace {

constexpr std::chrono::seconds kGuard{1};
constexpr int kWidth = 540; // of the window, with about 60 characters per line

bool fits(const QSize& size, const QSize& largest) {
    return size.boundedTo(largest) == size;
}

} // namespace

MainWindow::MainWindow() : QDialog(nullptr, Qt::Window), ui_(std::make_unique<Ui::MainWindow>()) {
    ui_->setupUi(this);
    localize();
    const QPixmap icon = applicationIcon();
    setWindowIcon(icon);
    ui_->iconLabel->setPixmap(icon);
    guard_.setSingleShot(true);
    guard_.setTimerType(Qt::PreciseTimer);
    connectControls();
}

MainWindow::~MainWindow() = default;

void MainWindow::localize() {
    setLayoutDirection(textDirection());
    localizeTexts(*this);
    ui_->iconLabel->setAccessibleName(QString::fromStdString(productName()));
    setAccessibleDescription(ui_->headingLabel->text());
    ui_->cancelButton->setShortcut(Qt::Key_Escape); // after its text, which resets the shortcut
}

void MainWindow::connectControls() {
    connect(ui_->mainButton, &QPushButton::clicked, this, &MainWindow::mainButtonPressed);
    connect(ui_->cancelButton, &QPushButton::clicked, this, &MainWindow::cancelButtonPressed);
    connect(ui_->removeButton, &QPushButton::clicked, this, [this] {
        setRemovalOffered(false); // one press is one removal
        emit removalRequested();
    });
    connect(&guard_, &QTimer::timeout, this, [this] { ui_->removeButton->setEnabled(true); });
    auto* ring = new FocusRing(this);
    // Capture the widgets, because they outlive ui_ when the window is destroyed with the focus.
    connect(qApp, &QApplication::focusChanged, ring,
            [ring, content = ui_->content, area = ui_->scrollArea](QWidget* old, QWidget* now) {
                const bool isControl = content->isAncestorOf(now);
                ring->setWidget(isControl ? now : nullptr);
                // A window that has just become active stays scrolled to its top.
                if (isControl && old != nullptr) {
                    area->ensureWidgetVisible(now);
                }
            });
    const auto* quit = new QShortcut(QKeySequence::Quit, this);
    connect(quit, &QShortcut::activated, this, &MainWindow::quitRequested);
}

void MainWindow::present(const std::string& reference, bool hasAccountPage) {
    setWindowTitle(QString::fromStdString(productName()));
    ui_->noteLabel->setVisible(hasAccountPage);
    showReference(reference);
    fit();
    move(screen()->availableGeometry().center() -
         QRect({}, size() + estimatedFrameSize()).center());
    ui_->removeButton->setEnabled(false);
    show();
    // Qt shows a scroll bar while it lays out the texts, and keeps it if they fit only without one.
    ui_->scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    ui_->scrollArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
    windowHandle()->installEventFilter(this);
    raise();
    activateWindow();
    ui_->mainButton->setFocus();
}

void MainWindow::showReference(const std::string& reference) {
    ui_->referenceLabel->setText(localized("Subscription reference: %@", reference));
    auto* copy = new QAction(localized("Copy"), ui_->referenceLabel);
    connect(copy, &QAction::triggered, this,
            [=] { QApplication::clipboard()->setText(QString::fromStdString(reference)); });
    ui_->referenceLabel->addAction(copy);
}

void MainWindow::offerRemoval() {
    setRemovalOffered(true);
}

void MainWindow::setRemovalOffered(bool isOffered) {
    guard_.stop();
    for (auto* button : {ui_->removeButton, ui_->cancelButton}) {
        button->setEnabled(isOffered); // assistive technology can press hidden buttons
        button->setVisible(isOffered);
    }
    // Hide the message, because the announced removal has begun. Its area keeps its size.
    ui_->message->setVisible(isOffered);
    setAccessibleDescription(isOffered ? ui_->headingLabel->text() : QString());
    ui_->mainButton->setText(localized(isOffered ? "&Keep Subscription" : "&Close"));
    ui_->mainButton->setAccessibleDescription(localized(
        isOffered ? "Closes this helper. Your subscription continues." : "Closes this helper."));
}

/// Estimates the size of the window manager's title bar and borders, which is unknown until the
/// window is shown.
QSize MainWindow::estimatedFrameSize() const {
    constexpr int kBorders = 8;
    return {kBorders, kBorders + style()->pixelMetric(QStyle::PM_TitleBarHeight)};
}

/// Returns the size of the largest window that fits the screen.
QSize MainWindow::largestSize() const {
    return screen()->availableGeometry().size() - estimatedFrameSize();
}

void MainWindow::setDensity(const Density& density) {
    ui_->iconLabel->setVisible(density.hasIcon);
    QFont font = this->font();
    font.setPointSizeF(font.pointSizeF() * density.headingScale);
    font.setBold(true);
    ui_->headingLabel->setFont(font);
    ui_->contentLayout->setContentsMargins(density.contentMargins);
    ui_->contentLayout->setSpacing(density.contentSpacing);
    ui_->textLayout->setSpacing(density.itemSpacing);
    ui_->buttonLayout->setSpacing(density.itemSpacing);
    ui_->buttonLayout->setDirection(density.buttons);
    ui_->sheetLayout->setContentsMargins(density.sheetMargins);
    for (auto* button : {ui_->removeButton, ui_->cancelButton, ui_->mainButton}) {
        button->setMinimumSize(button->sizeHint() + density.buttonPadding);
    }
}

/// Returns the layouts of the texts from the outside in.
std::array<QLayout*, 3> MainWindow::layouts() const {
    return {ui_->contentLayout, ui_->messageAreaLayout, ui_->messageLayout};
}

/// Returns the size that shows all texts in full, within the screen's width if possible.
QSize MainWindow::neededSize() const {
    QLayout& layout = *ui_->contentLayout;
    // Invalidate the inner layouts as well, because Qt passes a change on only later.
    for (QLayout* each : layouts()) {
        each->invalidate();
    }
    const int width =
        std::max(layout.minimumSize().width(), std::min(kWidth, largestSize().width()));
    return {width, layout.totalHeightForWidth(width)};
}

/// Sets the size that the texts need, within the screen. The rest can be scrolled to. The user
/// cannot change the size, because a smaller window would cut lines and a larger one adds only
/// space.
void MainWindow::fit() {
    const QSize largest = largestSize();
    setDensity(kRoomy);
    QSize size = neededSize();
    if (!fits(size, largest)) {
        setDensity(kCompact);
        size = neededSize();
    }
    if (size.width() > largest.width()) {
        setDensity(kStacked);
        size = neededSize();
    }
    setFixedSize(size.boundedTo(largest));
    // At an unchanged size, Qt would lay out the changed texts only later.
    for (QLayout* each : layouts()) {
        each->activate();
    }
}

void MainWindow::beginProgress() {
    ui_->spinner->startAnimation();
    ui_->progressSheet->beginSheet(*ui_->content, *ui_->messageArea);
    ui_->progressLabel->setFocus();
}

void MainWindow::showProgress(const QString& text) {
    ui_->progressLabel->setText(text);
    growForProgress();
}

void MainWindow::growForProgress() {
    const int missing = ui_->progressSheet->missingHeight();
    if (missing > 0) {
        setFixedHeight(std::min(height() + missing, largestSize().height()));
        stayOnScreen();
    }
}

/// Moves the window if it has grown beyond the screen, because some window managers leave it there
/// and the others move it only later.
void MainWindow::stayOnScreen() {
    const QRect available = screen()->availableGeometry();
    const QPoint beyond = frameGeometry().bottomRight() - available.bottomRight();
    if (beyond.x() > 0 || beyond.y() > 0) {
        move(std::max(available.left(), pos().x() - std::max(0, beyond.x())),
             std::max(available.top(), pos().y() - std::max(0, beyond.y())));
    }
}

void MainWindow::endProgress(int returnCode) {
    ui_->progressSheet->endSheet(returnCode);
    ui_->mainButton->setFocus();
    emit progressEnded();
}

bool MainWindow::isInProgress() const {
    return ui_->progressSheet->isSessionRunning();
}

void MainWindow::changeEvent(QEvent* event) {
    QDialog::changeEvent(event);
    if (event->type() == QEvent::WindowStateChange && (isMaximized() || isFullScreen())) {
        showNormal(); // some desktops maximize even windows of a fixed size
    }
    if (isVisible() &&
        (event->type() == QEvent::FontChange || event->type() == QEvent::StyleChange)) {
        // Later, because the children follow the desktop's theme after the window.
        QTimer::singleShot(0, this, [this] {
            fit();
            stayOnScreen();
            if (ui_->progressSheet->isVisible()) {
                growForProgress();
            }
        });
    }
}

void MainWindow::closeEvent(QCloseEvent* event) {
    if (isInProgress()) {
        event->ignore();
    } else {
        emit quitRequested();
    }
}

bool MainWindow::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Expose && windowHandle()->isExposed()) {
        watched->removeEventFilter(this); // only the first time on the screen counts
        guard_.start(kGuard);
    }
    return QDialog::eventFilter(watched, event);
}

void MainWindow::keyPressEvent(QKeyEvent* event) {
    // The second button has Escape as its shortcut. Without that button the key presses Close, but
    // never while the sheet is modal, when it would close other dialogs.
    if (event->matches(QKeySequence::Cancel)) {
        if (!isInProgress()) {
            ui_->mainButton->click();
        }
        return;
    }
    // Let Return press the focused button instead of the default one, which a screen reader does
    // not announce.
    auto* button = qobject_cast<QPushButton*>(focusWidget());
    if (button != nullptr && (event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter)) {
        button->click();
        return;
    }
    QDialog::keyPressEvent(event);
}

} // namespace app
