#include "app/Localization.h"

#include "base/Format.h"
#include "platform/Bundle.h"
#include "platform/StringsTable.h"

#include <filesystem>
#include <mutex>
#include <optional>
#include <utility>

#include <QLabel>
#include <QLocale>
#include <QPushButton>

namespace app {
namespace {

std::optional<std::filesystem::path> tableFile() {
    const auto bundle = platform::Bundle::mainBundle();
    return bundle ? bundle->pathForResource("Localizable.strings") : std::nullopt;
}

std::string entry(std::string_view key) {
    // Keep the table, because the window looks up some 30 texts before it appears.
    static std::mutex mutex;
    static std::optional<std::filesystem::path> file;
    static platform::StringsTable table;
    const std::lock_guard lock(mutex);
    if (auto current = tableFile(); current != file) {
        table = current ? platform::readStringsTable(*current) : platform::StringsTable();
        file = std::move(current);
    }
    const auto found = table.find(key);
    return found != table.end() ? found->second : std::string(key);
}

/// Localizes all texts of a kind of widget.
template <class Widget>
void localizeTextsOf(const QWidget& window) {
    for (auto* widget : window.findChildren<Widget*>()) {
        if (!widget->text().isEmpty()) {
            widget->setText(localized(widget->text().toStdString()));
        }
    }
}

} // namespace

QString localized(std::string_view key) {
    QString product = QString::fromStdString(productName());
    if (textDirection() == Qt::RightToLeft) {
        product.replace(QLatin1Char(' '), QChar::Nbsp);
    }
    return localized(key, product.toStdString());
}

QString localized(std::string_view key, const std::string& argument) {
    return QString::fromStdString(base::formatted(entry(key), {argument, argument}));
}

std::string productName() {
    return entry("Product Name");
}

Qt::LayoutDirection textDirection() {
    const auto table = tableFile();
    const auto language = table ? table->parent_path().stem().native() : std::string();
    return QLocale(QString::fromStdString(language)).textDirection();
}

void localizeTexts(const QWidget& window) {
    localizeTextsOf<QLabel>(window);
    localizeTextsOf<QPushButton>(window);
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

} // namespace app
