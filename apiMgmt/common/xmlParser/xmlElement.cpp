#include "apiMgmt/common/xmlParser/xmlElement.h"

namespace parser {

const XMLElement* XMLElement::GetChildElemByTag(std::string_view tag) const {
    const XMLElement* child = m_firstChild;
    while (child != nullptr && child->m_name != tag) {
        child = child->m_nextSibling;
    }
    return child;
}

std::string XMLElement::GetChildElemContentByTag(std::string_view tag) const {
    const XMLElement* child = GetChildElemByTag(tag);
    return child != nullptr ? child->GetElementContent() : std::string();
}

std::vector<const XMLElement*> XMLElement::GetChildElemsByTagName(std::string_view tag) const {
    std::vector<const XMLElement*> found;
    for (const XMLElement* child = m_firstChild; child != nullptr; child = child->m_nextSibling) {
        if (child->m_name == tag) {
            found.push_back(child);
        }
    }
    return found;
}

std::vector<XMLElement::TagVal> XMLElement::GetChildTagVals() const {
    std::vector<TagVal> tagVals;
    for (const XMLElement* child = m_firstChild; child != nullptr; child = child->m_nextSibling) {
        tagVals.emplace_back(child->m_name, child->m_content);
    }
    return tagVals;
}

}  // namespace parser
