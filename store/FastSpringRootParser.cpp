#include "store/FastSpringRootParser.h"

#include "store/Conversions.h"
#include "store/ServerDate.h"

namespace store {

FastSpringRootParser::FastSpringRootParser(std::string_view data) : parser_(data) {}

Date FastSpringRootParser::fromServerDate(std::string_view text) {
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
    lowercase(elementName, elementName_);
    if (checkForErrors(elementName_, attributes) || startContainer(elementName_)) {
        return;
    }
    accumulatingParsedCharacterData_ = true;
    currentParsedCharacterData_.clear();
}

void FastSpringRootParser::didEndElement(std::string_view elementName) {
    lowercase(elementName, elementName_);
    if (cleanUpAnyErrors(elementName_)) {
        return;
    }
    endElement(elementName_, currentParsedCharacterData_);
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
    parser_.parse(*this);
}

} // namespace store
