#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"

#include <algorithm>

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
    // Every value of a request comes by here, so the text grows once and not for each piece.
    const std::size_t before = xml.size();
    xml.resize(before + ElementSize(name, value));
    char* next = xml.data() + before;
    const auto put = [&next](std::string_view piece) {
        next = std::copy(piece.begin(), piece.end(), next);
    };
    put("<");
    put(name);
    put(">");
    put(value);
    put("</");
    put(name);
    put(">");
}
