#include "tools/RecordJSON.h"

#include "base/Timestamp.h"

namespace tools {
namespace {

using nlohmann::ordered_json;

ordered_json valueJSON(bool flag) {
    return flag;
}

ordered_json valueJSON(const store::Text& text) {
    return text ? ordered_json(*text) : ordered_json();
}

ordered_json valueJSON(const store::Number& number) {
    return number ? ordered_json(*number) : ordered_json();
}

ordered_json valueJSON(const store::Date& time) {
    return time ? ordered_json(base::timestampText(*time)) : ordered_json();
}

template <class Record>
ordered_json objectJSON(const Record& record);

template <class Record>
ordered_json valueJSON(const store::List<Record>& list) {
    if (!list) {
        return {};
    }
    ordered_json array = ordered_json::array();
    for (const auto& record : *list) {
        array.push_back(objectJSON(*record));
    }
    return array;
}

template <class Record>
ordered_json objectJSON(const Record& record) {
    ordered_json object;
    for (const auto& field : store::kFields<Record>) {
        object[field.name] =
            std::visit([&](auto member) { return valueJSON(record.*member); }, field.member);
    }
    return object;
}

} // namespace

ordered_json recordJSON(const store::FastSpringSubscription& record) {
    return objectJSON(record);
}

ordered_json recordJSON(const store::FastSpringOrder& record) {
    return objectJSON(record);
}

} // namespace tools
