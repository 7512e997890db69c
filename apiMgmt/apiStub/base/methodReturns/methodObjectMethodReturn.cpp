#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"

#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/common/xmlParser/xmlElement.h"

METHODObjectMethodReturn::METHODObjectMethodReturn(bool isArray)
    : METHODObjectMethodReturn(isArray, true, nullptr) {}

METHODObjectMethodReturn::METHODObjectMethodReturn(bool isArray, bool successful,
                                                   BASEApiMethod* method)
    : OBJECTListMethodReturn(isArray, successful, method) {}

std::string METHODObjectMethodReturn::GetReturnString(ObjectReturnEncodeEnum) const {
    const char* const tag = IsArray() ? "ReturnMethodObjectArray" : "ReturnMethodObject";
    if (GetObjects().empty()) {
        return std::string("<") + tag + " />";
    }
    std::string objects;
    for (const BASEApiMethodObject* object : GetObjects()) {
        objects += object->ToXMLString(true);
    }
    return Element(tag, objects);
}

void METHODObjectMethodReturn::ReadObjects(const parser::XMLElement& element) {
    for (const auto* child = element.GetFirstChild(); child != nullptr && !IsFull();
         child = child->GetNextSibling()) {
        const std::string recordName(child->GetElementName());
        if (auto object = APIMethodObjectRegistry::Instance().CreateObject(recordName)) {
            object->ParseElemNode(child);
            Append(std::move(object));
        }
    }
}
