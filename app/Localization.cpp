#include "app/Localization.h"

#include "base/Format.h"
#include "platform/Bundle.h"

#include <QLocale>

namespace app {
namespace {

std::string entry(std::string_view key) {
    const auto bundle = platform::Bundle::mainBundle();
    return bundle ? bundle->localizedString(key) : std::string(key);
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
    const auto bundle = platform::Bundle::mainBundle();
    const auto table = bundle ? bundle->pathForResource("Localizable.strings") : std::nullopt;
    const auto language = table ? table->parent_path().stem().native() : std::string();
    return QLocale(QString::fromStdString(language)).textDirection();
}

} // namespace app
