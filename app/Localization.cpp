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
    std::string text = entry(key);
    if (text.find("%@") != std::string::npos) {
        const std::string product = productName();
        text = base::formatted(text, {product, product});
    }
    return QString::fromStdString(text);
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
