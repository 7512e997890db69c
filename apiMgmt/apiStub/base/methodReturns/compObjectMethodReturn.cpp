#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"

#include <algorithm>
#include <memory>

#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "apiMgmt/common/xmlParser/xmlElement.h"
#include "apiMgmt/common/xmlParser/xmlParser.h"

namespace {

constexpr const char* kHeaderTag = "Header";
constexpr const char* kDataTag = "Data";

using Objects = std::vector<BASEApiObject*>;
using Position = Objects::const_iterator;

/// The end of the run of objects that are of the class of the first.
Position endOfRun(Position begin, Position end) {
    return std::find_if(begin, end, [&](const BASEApiObject* object) {
        return object->GetObjectName() != (*begin)->GetObjectName();
    });
}

/// A data line that keeps its place among others: a control character in it would be read as
/// the end of a line.
std::string dataLine(const std::string& line) {
    std::string safe;
    for (const char character : line) {
        if (static_cast<unsigned char>(character) < 0x20) {
            safe += "--nl--";
        } else {
            safe += character;
        }
    }
    return STRINGUtil::EscapeString(safe, false) + "\n";
}

std::string section(Position begin, Position end, ObjectReturnEncodeEnum encode) {
    const auto selection =
        BASEApiObject::GetCombinedAttributeNameList(std::vector<const BASEApiObject*>(begin, end));
    const bool withHeader = encode == ObjectReturnEncodeEnum::Csv;
    std::string data;
    for (Position object = begin; object != end; ++object) {
        data +=
            dataLine(withHeader ? (*object)->CreateCSVData(selection) : (*object)->CreateCSVData());
    }
    std::string inner;
    if (withHeader) {
        XMLText::AppendElement(inner, kHeaderTag, (*begin)->CreateCSVHeader(selection));
    }
    XMLText::AppendElement(inner, kDataTag, data);
    std::string element;
    XMLText::AppendElement(element, (*begin)->GetObjectName(), inner);
    return element;
}

/// The header of a section; one without it has a column for every attribute.
std::string headerOf(const parser::XMLElement& element, const BASEApiObject& object) {
    const parser::XMLElement* header = element.GetChildElemByTag(kHeaderTag);
    return header != nullptr ? header->GetElementContent() : object.CreateCSVHeader();
}

/// No fewer than the names of a header or the values of data lines.
std::size_t fieldsOf(const std::string& text) {
    return 1 + static_cast<std::size_t>(std::count_if(
                   text.begin(), text.end(), [](char end) { return end == ',' || end == '\n'; }));
}

}  // namespace

COMPObjectMethodReturn::COMPObjectMethodReturn(bool isArray)
    : COMPObjectMethodReturn(isArray, true, nullptr) {}

COMPObjectMethodReturn::COMPObjectMethodReturn(bool isArray, bool successful, BASEApiMethod* method)
    : OBJECTListMethodReturn(isArray, successful, method) {}

std::string COMPObjectMethodReturn::GetReturnString(ObjectReturnEncodeEnum encode) const {
    std::string objects;
    if (encode == ObjectReturnEncodeEnum::Csv || encode == ObjectReturnEncodeEnum::CsvData) {
        for (Position begin = GetObjects().begin(); begin != GetObjects().end();) {
            const Position end = endOfRun(begin, GetObjects().end());
            objects += section(begin, end, encode);
            begin = end;
        }
    } else {
        for (const BASEApiObject* object : GetObjects()) {
            objects += object->ToString(ObjectReturnEncodeEnum::Xml);
        }
    }
    return Element(IsArray() ? "ReturnObjectArray" : "ReturnObject", objects);
}

bool COMPObjectMethodReturn::ReadObjects(const parser::XMLElement& element) {
    std::size_t fields = 0;
    for (const auto* child = element.GetFirstChild(); child != nullptr && !IsFull();
         child = child->GetNextSibling()) {
        auto object =
            APIObjectRegistry::Instance().CreateObject(std::string(child->GetElementName()));
        if (!object) {
            continue;
        }
        const parser::XMLElement* data = child->GetChildElemByTag(kDataTag);
        if (data == nullptr || object->GetAttributeByName(kDataTag) != nullptr) {
            object->ParseElemNode(child);
            Append(std::move(object));
            continue;
        }
        const std::string header = headerOf(*child, *object);
        const std::string lines = data->GetElementContent();
        fields += fieldsOf(header) + fieldsOf(lines);
        if (fields > parser::XMLParser::kMaxElements) {
            return false;
        }
        ReadLines(*object, object->ParseCSVHeader(header), lines);
    }
    return true;
}

void COMPObjectMethodReturn::ReadLines(const BASEApiObject& sample, const APIAttributeList& columns,
                                       const std::string& text) {
    std::vector<std::string> lines;
    STRINGUtil::SplitString(text, '\n', lines);
    for (std::size_t i = 0; i < lines.size() && !IsFull(); ++i) {
        auto listed = APIObjectRegistry::Instance().CreateObject(sample.GetObjectName());
        listed->ParseCSVData(columns, lines[i]);
        Append(std::move(listed));
    }
}
