#include "store/FastSpringRootParser.h"

#include "store/Conversions.h"
#include "store/ServerDate.h"

namespace store {

FastSpringRootParser::FastSpringRootParser(std::string_view data) : data_(data) {}

Date FastSpringRootParser::fromServerDate(std::string_view text) const {
    return dateFromText(text);
}

bool FastSpringRootParser::checkForErrors(std::string_view elementName,
                                          const base::XMLAttributes& /*attributes*/) {
    if (elementName != "html") {
        return false;
    }
    isHTMLServerError = true;
    return true;
}

bool FastSpringRootParser::cleanUpAnyErrors(std::string_view /*elementName*/) const {
    return isHTMLServerError;
}

void FastSpringRootParser::didStartElement(std::string_view elementName,
                                           const base::XMLAttributes& attributes) {
    const auto name = lowercaseName(elementName);
    if (checkForErrors(name, attributes) || startContainer(name)) {
        return;
    }
    accumulatingParsedCharacterData_ = true;
    currentParsedCharacterData_.clear();
}

void FastSpringRootParser::didEndElement(std::string_view elementName) {
    const auto name = lowercaseName(elementName);
    if (cleanUpAnyErrors(name)) {
        return;
    }
    endElement(name, currentParsedCharacterData_);
    accumulatingParsedCharacterData_ = false;
}

void FastSpringRootParser::foundCharacters(std::string_view characters) {
    if (accumulatingParsedCharacterData_) {
        currentParsedCharacterData_.append(characters);
    }
}

void FastSpringRootParser::parseErrorOccurred() {
    isParsingError = true;
}

void FastSpringRootParser::parse() {
    base::parseXML(data_, *this);
}

std::string_view FastSpringRootParser::lowercaseName(std::string_view elementName) {
    elementName_.assign(elementName);
    lowercase(elementName_);
    return elementName_;
}

} // namespace store
