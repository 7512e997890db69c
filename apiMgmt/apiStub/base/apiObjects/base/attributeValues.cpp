#include "apiMgmt/apiStub/base/apiObjects/base/attributeValues.h"

#include <utility>

#include "apiMgmt/apiStub/base/apiAttributes/neverDestroyed.h"
#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"
#include "apiMgmt/common/utils/secretText.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "apiMgmt/common/xmlParser/xmlElement.h"

ATTRIBUTEValues::ATTRIBUTEValues(ValueMap values) : m_values(std::move(values)) {}

void ATTRIBUTEValues::ClearSecrets() noexcept {
    for (auto& [name, value] : m_values) {
        clearSecret(value);
    }
}

bool ATTRIBUTEValues::GetStringDirect(const std::string& name, std::string& value) const {
    const auto entry = m_values.find(name);
    if (entry == m_values.end()) {
        return false;
    }
    value = entry->second;
    return true;
}

const std::string& ATTRIBUTEValues::GetStringDirect(const std::string& name) const {
    static const NEVERDestroyed<std::string> unset([] { return std::string(); });
    const auto entry = m_values.find(name);
    return entry == m_values.end() ? unset.Get() : entry->second;
}

void ATTRIBUTEValues::PutStringDirect(const std::string& name, std::string value) {
    m_values.insert_or_assign(name, std::move(value));
}

bool ATTRIBUTEValues::IsAttributeSet(const std::string& name) const {
    return m_values.contains(name);
}

bool ATTRIBUTEValues::IsAttributeSet(const BASEApiAttribute* attribute) const {
    return attribute && IsAttributeSet(attribute->GetXmlName());
}

const BASEApiAttribute* ATTRIBUTEValues::FindAttribute(const APIAttributeList& attributes,
                                                       const std::string& name) {
    for (const BASEApiAttribute* attribute : attributes) {
        if (attribute->GetXmlName() == name) {
            return attribute;
        }
    }
    return nullptr;
}

void ATTRIBUTEValues::AppendElements(std::string& xml, const APIAttributeList& attributes,
                                     bool escape, bool unsetToo) const {
    for (const BASEApiAttribute* attribute : attributes) {
        const std::string& name = attribute->GetXmlName();
        const auto entry = m_values.find(name);
        if (entry == m_values.end()) {
            if (unsetToo) {
                XMLText::AppendElement(xml, name, "");
            }
        } else if (escape) {
            XMLText::AppendElement(xml, name, STRINGUtil::EscapeString(entry->second, false));
        } else {
            XMLText::AppendElement(xml, name, entry->second);
        }
    }
}

void ATTRIBUTEValues::StoreChildren(const parser::XMLElement* element) {
    if (!element) {
        return;
    }
    for (const auto& [tag, content] : element->GetChildTagVals()) {
        PutStringDirect(std::string(tag), std::string(content));
    }
}
