#include "app/SubscriptionHelperAppDelegate.h"

#include "app/Contrast.h"
#include "app/ProgressSheet.h"
#include "app/Spinner.h"
#include "app/Texts.h"
#include "housekeeping/HelperUtilities.h"
#include "platform/Bundle.h"
#include "platform/UserDefaults.h"
#include "store/FastSpringUtilities.h"
#include "ui_MainWindow.h"

#include <QApplication>
#include <QIcon>
#include <QKeyEvent>
#include <QScreen>
#include <QShortcut>

namespace app {
namespace {

constexpr int kIconSide = 64;
constexpr QSize kButtonRoom{20, 6}; // around a button's text, beyond what the style gives
constexpr double kHeadingScale = 1.5;

/// A missing or empty reference counts as none. Blanks around it are those of the line that the
/// product wrote.
AtomicText::Value userSubscriptionReference() {
    constexpr const char* kBlanks = " \t\n\v\f\r";
    const auto text = platform::UserDefaults(HELPER_PRODUCT_DOMAIN).text("subscriptionReference");
    const auto start = text ? text->find_first_not_of(kBlanks) : std::string::npos;
    if (start == std::string::npos) {
        return std::nullopt;
    }
    return text->substr(start, text->find_last_not_of(kBlanks) + 1 - start);
}

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

SubscriptionHelperAppDelegate::SubscriptionHelperAppDelegate()
    : window_(std::make_unique<QDialog>(nullptr, Qt::Window)),
      ui_(std::make_unique<Ui::MainWindow>()) {
    loadWindow();
}

SubscriptionHelperAppDelegate::~SubscriptionHelperAppDelegate() = default;

void SubscriptionHelperAppDelegate::loadWindow() {
    ui_->setupUi(window_.get());
    mainLabel_ = ui_->mainLabel;
    mainButton_ = ui_->mainButton;
    cancelButton_ = ui_->cancelButton;
    progressSheet_ = ui_->progressSheet;
    spinner_ = ui_->spinner;
    progressLabel_ = ui_->progressLabel;

    window_->setLayoutDirection(textDirection());
    localizeTexts<QLabel>(*window_);
    localizeTexts<QPushButton>(*window_);
    localizeAccessibleTexts(*window_);
    cancelButton_->setShortcut(Qt::Key_Escape); // after its text, which resets the shortcut
    setHeading(*ui_->headingLabel);
    setPrimary(*mainButton_);
    for (auto* button : {ui_->removeButton, cancelButton_, mainButton_}) {
        giveRoom(*button);
    }
    const QIcon icon = applicationIcon();
    window_->setWindowIcon(icon);
    ui_->iconLabel->setPixmap(icon.pixmap({kIconSide, kIconSide}, window_->devicePixelRatioF()));

    connect(mainButton_, &QPushButton::clicked, this, &SubscriptionHelperAppDelegate::mainButton);
    connect(cancelButton_, &QPushButton::clicked, this,
            &SubscriptionHelperAppDelegate::cancelButton);
    connect(ui_->removeButton, &QPushButton::clicked, this, [this] {
        setRemovalEnabled(false); // one press is one removal
        startCancellation();
    });
    const auto* quit = new QShortcut(QKeySequence::Quit, window_.get());
    connect(quit, &QShortcut::activated, this, &SubscriptionHelperAppDelegate::exitApp);
    window_->installEventFilter(this);
}

void SubscriptionHelperAppDelegate::setRemovalEnabled(bool isEnabled) {
    ui_->removeButton->setEnabled(isEnabled);
    cancelButton_->setEnabled(isEnabled);
}

void SubscriptionHelperAppDelegate::awakeFromNib() noexcept {
    const std::string store = housekeeping::HelperUtilities::storeID();
    const auto reference = userSubscriptionReference();
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
    presentWindow();
}

void SubscriptionHelperAppDelegate::presentWindow() {
    window_->setWindowTitle(QString::fromStdString(productName()));
    window_->adjustSize();
    const QRect screen = window_->screen()->availableGeometry();
    window_->move(screen.center() - window_->rect().center());
    window_->show();
    window_->raise();
    window_->activateWindow();
    mainButton_->setFocus();
}

void SubscriptionHelperAppDelegate::mainButton() {
    exitApp();
}

void SubscriptionHelperAppDelegate::cancelButton() {
    exitApp();
}

void SubscriptionHelperAppDelegate::exitApp() {
    // Not quit(), which asks the windows first: one with a modal sheet would refuse.
    QApplication::exit(0);
}

bool SubscriptionHelperAppDelegate::eventFilter(QObject* watched, QEvent* event) {
    if (event->type() == QEvent::Close) {
        if (progressSheet_->isSessionRunning()) {
            event->ignore();
        } else {
            exitApp();
        }
        return true;
    }
    // The second button has Escape as its shortcut. While it is disabled the key must do nothing,
    // rather than what a dialog does with it.
    if (event->type() == QEvent::KeyPress &&
        static_cast<QKeyEvent*>(event)->matches(QKeySequence::Cancel)) {
        return true;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace app
