#include "apiMgmt/apiStub/base/apiObjects/base/baseApiObject.h"

#include <algorithm>

#include "apiMgmt/apiStub/base/apiAttributes/listText.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"
#include "apiMgmt/apiStub/base/apiObjects/base/csvText.h"
#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"
#include "apiMgmt/common/utils/stringUtil.h"

namespace {

constexpr const char* kAsyncTask = "AsyncTask";

std::vector<std::string> namesOf(const APIAttributeList& attributes) {
    std::vector<std::string> names;
    names.reserve(attributes.size());
    for (const BASEApiAttribute* attribute : attributes) {
        names.push_back(attribute->GetXmlName());
    }
    return names;
}

}  // namespace

BASEApiObject::~BASEApiObject() = default;

bool BASEApiObject::AsyncAllowed(const std::string& objectName,
                                 const std::string& methodName) const {
    const auto method = APIMethodRegistry::Instance().CreateObject(
        STRINGUtil::FormatStr("API%s%sMethod", objectName.c_str(), methodName.c_str()));
    return method && method->AsyncAllowed();
}

void BASEApiObject::PutStringDirect(const std::string& name, const std::string& value,
                                    bool escaped) {
    PutStringDirect(name, escaped ? STRINGUtil::UnEscapeString(value, false) : value);
}

const BASEApiAttribute* BASEApiObject::GetAttributeByName(const std::string& name) const {
    return FindAttribute(GetAttributeList(), name);
}

APIObjectInstance BASEApiObject::GetObjectIdentifier() const {
    return APIObjectInstance(*this);
}

std::string BASEApiObject::ToString(ObjectReturnEncodeEnum encode) const {
    switch (encode) {
        case ObjectReturnEncodeEnum::Csv:
            return CreateCSVHeaderAndData();
        case ObjectReturnEncodeEnum::CsvData:
            return CreateCSVData();
        default:
            return ToXMLString();
    }
}

std::string BASEApiObject::ToXMLString() const {
    const bool isAsyncTask = STRINGUtil::Comparecase(GetObjectName(), kAsyncTask) == 0;
    std::string xml;
    XMLText::AppendStartTag(xml, GetObjectName());
    AppendElements(xml, GetAttributeList(), true, isAsyncTask);
    XMLText::AppendEndTag(xml, GetObjectName());
    return xml;
}

void BASEApiObject::ParseElemNode(const parser::XMLElement* element) {
    StoreChildren(element);
}

std::string BASEApiObject::CreateCSVHeader() const {
    return CreateCSVHeader(GetAttributeList());
}

std::string BASEApiObject::CreateCSVHeader(const APIAttributeList& attributes) {
    return joinItems(namesOf(attributes), CSVText::kSeparator);
}

std::string BASEApiObject::CreateCSVHeader(const SelectionMap& selection) const {
    return joinItems(SelectNames(selection), CSVText::kSeparator);
}

std::string BASEApiObject::CreateCSVData() const {
    return CreateCSVData(GetAttributeList());
}

std::string BASEApiObject::CreateCSVData(const APIAttributeList& attributes) const {
    return JoinValues(namesOf(attributes));
}

std::string BASEApiObject::CreateCSVData(const SelectionMap& selection) const {
    return JoinValues(SelectNames(selection));
}

std::string BASEApiObject::CreateCSVHeaderAndData() const {
    return CreateCSVHeaderAndData(GetAttributeList());
}

std::string BASEApiObject::CreateCSVHeaderAndData(const APIAttributeList& attributes) const {
    return CreateCSVHeader(attributes) + "\n" + CreateCSVData(attributes);
}

std::string BASEApiObject::CreateCSVHeaderAndData(const SelectionMap& selection) const {
    return CreateCSVHeader(selection) + "\n" + CreateCSVData(selection);
}

APIAttributeList BASEApiObject::ParseCSVHeader(const std::string& header) const {
    std::vector<std::string> names;
    STRINGUtil::SplitString(header, CSVText::kSeparator, names, 0);
    APIAttributeList columns;
    columns.reserve(names.size());
    for (const std::string& name : names) {
        columns.push_back(GetAttributeByName(name));
    }
    return columns;
}

void BASEApiObject::ParseCSVData(const APIAttributeList& columns, const std::string& data) {
    std::vector<std::string> values;
    STRINGUtil::SplitString(data, CSVText::kSeparator, values, 0);
    for (std::size_t i = 0; i < std::min(columns.size(), values.size()); ++i) {
        if (columns[i] && !values[i].empty()) {
            PutStringDirect(columns[i]->GetXmlName(), CSVText::Unescape(values[i]));
        }
    }
}

BASEApiObject::SelectionMap BASEApiObject::GetCombinedAttributeNameList(
    const std::vector<const BASEApiObject*>& objects) {
    SelectionMap names;
    for (const BASEApiObject* object : objects) {
        for (const BASEApiAttribute* attribute : object->GetAttributeList()) {
            names[attribute->GetXmlName()] |= object->IsAttributeSet(attribute);
        }
    }
    return names;
}

std::vector<std::string> BASEApiObject::SelectNames(const SelectionMap& selection) const {
    std::vector<std::string> names = namesOf(GetAttributeList());
    std::erase_if(names, [&](const std::string& name) {
        const auto entry = selection.find(name);
        return entry == selection.end() || !entry->second;
    });
    for (const auto& [name, selected] : selection) {
        if (selected && !GetAttributeByName(name)) {
            names.push_back(name);
        }
    }
    return names;
}

std::string BASEApiObject::JoinValues(const std::vector<std::string>& names) const {
    std::vector<std::string> values;
    values.reserve(names.size());
    for (const std::string& name : names) {
        values.push_back(CSVText::Escape(GetStringDirect(name)));
    }
    return joinItems(values, CSVText::kSeparator);
}
