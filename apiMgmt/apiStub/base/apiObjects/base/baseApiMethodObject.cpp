#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"

#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"

BASEApiMethodObject::~BASEApiMethodObject() = default;

const BASEApiAttribute* BASEApiMethodObject::GetAttributeByName(const std::string& name) const {
    return FindAttribute(GetAttributeList(), name);
}

std::string BASEApiMethodObject::ToXMLString(bool escape) const {
    std::string xml;
    AppendXMLString(xml, escape);
    return xml;
}

void BASEApiMethodObject::AppendXMLString(std::string& xml, bool escape) const {
    XMLText::AppendStartTag(xml, GetObjectName());
    AppendElements(xml, GetAttributeList(), escape);
    XMLText::AppendEndTag(xml, GetObjectName());
}

bool BASEApiMethodObject::Parse(const std::string& text) {
    parser::XMLParser reader(nullptr);
    if (!reader.ParseXMLString(text)) {
        return false;
    }
    ParseElemNode(reader.GetDocumentElement());
    return true;
}

void BASEApiMethodObject::ParseElemNode(const parser::XMLElement* element) {
    StoreChildren(element);
}
