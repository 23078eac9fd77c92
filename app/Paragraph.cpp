#include "app/Paragraph.h"

namespace app {

int Paragraph::heightForWidth(int width) const {
    if (text_ != text() || font_ != font()) {
        heights_.clear();
        text_ = text();
        font_ = font();
    }
    const auto [entry, isNew] = heights_.try_emplace(width);
    if (isNew) {
        entry->second = QLabel::heightForWidth(width);
    }
    return entry->second;
}

} // namespace app
