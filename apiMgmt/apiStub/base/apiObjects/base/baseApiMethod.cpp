#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"

#include <algorithm>

#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/common/utils/stringUtil.h"

namespace {

constexpr const char* kSource = "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod";
constexpr const char* kLiteObject = "LiteObj";
// Tags and fixed texts of the ApiMethod element, for the one reservation.
constexpr std::size_t kFrameSize = 224;

template <class Names>
bool contains(const Names& names, const std::string& name) {
    return std::find(names.begin(), names.end(), name) != names.end();
}

APIMethodError notSet(const std::string& names, std::int32_t line) {
    return {ErrorStateEnum::InvalidRequest, kSource, line,
            STRINGUtil::FormatStr("Required attribute %s not set", names.c_str())};
}

}  // namespace

BASEApiMethod::BASEApiMethod(bool isAssociation) : m_isAssociation(isAssociation) {}

BASEApiMethod::BASEApiMethod(const ValueMap& attributes, bool isAssociation)
    : ATTRIBUTEValues(attributes), m_isAssociation(isAssociation) {}

// Clusters' keys travel in methods.
BASEApiMethod::~BASEApiMethod() {
    ClearSecrets();
}

bool BASEApiMethod::AsyncAllowed() const {
    return true;
}

UserPrivilegeEnum BASEApiMethod::GetMinUserPriv() const {
    return UserPrivilegeEnum::Reporter;
}

const APIAttributeList& BASEApiMethod::GetAttributeList() const {
    return GetAttributeListStatic();
}

const APIAttributeList& BASEApiMethod::GetAttributeListStatic() {
    static const NEVERDestroyed<APIAttributeList> none([] { return APIAttributeList(); });
    return none.Get();
}

std::string BASEApiMethod::GetXMLString(bool async, bool xmlEncode) const {
    return RenderXML(async, xmlEncode, {});
}

void BASEApiMethod::ValidateRequiredAttributes() const {}

void BASEApiMethod::ValidateRequiredOrAttributes() const {}

const BASEApiAttribute* BASEApiMethod::GetAttributeByName(const std::string& name) const {
    return FindAttribute(GetAttributeList(), name);
}

void BASEApiMethod::SetLiteObjectRequest() {
    PutStringDirect(kLiteObject, "1");
}

bool BASEApiMethod::IsRequestLite() const {
    return STRINGUtil::ConvertStringToBool(GetStringDirect(kLiteObject));
}

void BASEApiMethod::ValidateAttributes() const {
    for (const BASEApiAttribute* attribute : GetAttributeList()) {
        const std::string& name = attribute->GetXmlName();
        if (IsAttributeSet(name) && !CanIgnoreValidation(name)) {
            attribute->Validate(LoadText(name));
        }
    }
}

bool BASEApiMethod::CanIgnoreValidation(const std::string& name) const {
    return name == kLiteObject;
}

std::string BASEApiMethod::LoadText(const std::string& name) const {
    return STRINGUtil::UnEscapeString(GetStringDirect(name), false);
}

void BASEApiMethod::StoreText(const std::string& name, const std::string& text) {
    PutStringDirect(name, STRINGUtil::EscapeString(text, false));
}

void BASEApiMethod::RequireAttributes(NameList names) const {
    for (const char* name : names) {
        if (!IsAttributeSet(name)) {
            throw notSet(name, __LINE__);
        }
    }
}

void BASEApiMethod::RequireOneOf(NameList names) const {
    std::string all;
    for (const char* name : names) {
        if (IsAttributeSet(name)) {
            return;
        }
        all = STRINGUtil::AddToList(all, name);
    }
    throw notSet(all, __LINE__);
}

std::string BASEApiMethod::RenderXML(bool async, bool xmlEncode, NameList unwritten) const {
    std::size_t size = kFrameSize + GetObjectName().size() + GetMethodName().size();
    for (const auto& [name, value] : AllValues()) {
        size += XMLText::ElementSize(name, value);
    }

    std::string xml;
    xml.reserve(size);
    XMLText::AppendStartTag(xml, "ApiMethod");
    XMLText::AppendElement(xml, "CommandType", IsAssociation() ? "Association" : "Method");
    XMLText::AppendElement(xml, "Object", GetObjectName());
    XMLText::AppendElement(xml, "Command", GetMethodName());
    XMLText::AppendElement(xml, "Async", async ? "true" : "false");
    XMLText::AppendElement(xml, "ObjectEncodeType", xmlEncode ? "xml" : "csv");
    if (!AllValues().empty()) {
        XMLText::AppendStartTag(xml, "Attributes");
        for (const auto& [name, value] : AllValues()) {
            if (!name.empty() && !contains(unwritten, name)) {
                XMLText::AppendElement(xml, name, value);
            }
        }
        XMLText::AppendEndTag(xml, "Attributes");
    }
    XMLText::AppendEndTag(xml, "ApiMethod");
    return xml;
}
