#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"

#include <memory>

#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "apiMgmt/common/xmlParser/xmlElement.h"

namespace {

constexpr const char* headerTag = "Header";
constexpr const char* dataTag = "Data";

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
        XMLText::AppendElement(inner, headerTag, (*begin)->CreateCSVHeader(selection));
    }
    XMLText::AppendElement(inner, dataTag, data);
    std::string element;
    XMLText::AppendElement(element, (*begin)->GetObjectName(), inner);
    return element;
}

/// The header of a section; a section without one has a column for every attribute.
std::string headerOf(const parser::XMLElement& element, const BASEApiObject& object) {
    const parser::XMLElement* header = element.GetChildElemByTag(headerTag);
    return header != nullptr ? header->GetElementContent() : object.CreateCSVHeader();
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

void COMPObjectMethodReturn::ReadObjects(const parser::XMLElement& element) {
    for (const auto* child = element.GetFirstChild(); child != nullptr && !IsFull();
         child = child->GetNextSibling()) {
        ReadElement(*child);
    }
}

void COMPObjectMethodReturn::ReadElement(const parser::XMLElement& element) {
    const std::string className(element.GetElementName());
    auto object = APIObjectRegistry::Instance().CreateObject(className);
    if (!object) {
        return;
    }
    const parser::XMLElement* data = element.GetChildElemByTag(dataTag);
    if (data == nullptr || object->GetAttributeByName(dataTag) != nullptr) {
        object->ParseElemNode(&element);
        Append(std::move(object));
        return;
    }
    const std::string header = headerOf(element, *object);
    std::vector<std::string> lines;
    STRINGUtil::SplitString(data->GetElementContent(), '\n', lines);
    for (std::size_t i = 0; i < lines.size() && !IsFull(); ++i) {
        auto listed = APIObjectRegistry::Instance().CreateObject(className);
        listed->ParseCSV(header, lines[i]);
        Append(std::move(listed));
    }
}
