#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"

void XMLText::AppendStartTag(std::string& xml, std::string_view name) {
    xml += '<';
    xml += name;
    xml += '>';
}

void XMLText::AppendEndTag(std::string& xml, std::string_view name) {
    xml += "</";
    xml += name;
    xml += '>';
}

void XMLText::AppendElement(std::string& xml, std::string_view name, std::string_view value) {
    AppendStartTag(xml, name);
    xml += value;
    AppendEndTag(xml, name);
}
