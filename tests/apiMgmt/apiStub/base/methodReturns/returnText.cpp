#include "tests/apiMgmt/apiStub/base/methodReturns/returnText.h"

#include "apiMgmt/apiStub/base/methodReturns/boolMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/enumMaskMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/enumMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/intMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/stringMethodReturn.h"

namespace {

template <class List>
std::string listText(const char* kind, const List& outcome) {
    std::string text = std::string(kind) + (outcome.IsArray() ? "[]" : "");
    for (const auto* object : outcome.GetObjects()) {
        text.append(" ").append(object->GetObjectName()).append("{");
        const char* separator = "";
        for (const auto& [name, value] : object->AllValues()) {
            if (!value.empty()) {
                text.append(separator).append(name).append("=").append(value);
                separator = ";";
            }
        }
        text += "}";
    }
    return text;
}

}  // namespace

std::string returnText(const BASEApiMethodReturn& outcome) {
    if (!outcome.GetSuccessful()) {
        return "failed " + std::to_string(static_cast<int>(outcome.GetErrorCode())) + "|" +
               outcome.GetError() + "|" + outcome.GetLocalizedError() + "|" +
               outcome.GetErrorDetail();
    }
    if (const auto* made = dynamic_cast<const BOOLMethodReturn*>(&outcome))
        return made->GetValue() ? "bool True" : "bool False";

    if (const auto* made = dynamic_cast<const INTMethodReturn*>(&outcome))
        return "int " + std::to_string(made->GetValue());

    if (const auto* made = dynamic_cast<const STRINGMethodReturn*>(&outcome))
        return "string " + made->GetValue();

    if (const auto* made = dynamic_cast<const ENUMMethodReturn*>(&outcome))
        return "enum " + made->GetValue();

    if (const auto* made = dynamic_cast<const ENUMMaskMethodReturn*>(&outcome))
        return "mask " + made->GetValue();

    if (const auto* made = dynamic_cast<const COMPObjectMethodReturn*>(&outcome))
        return listText("objects", *made);

    if (const auto* made = dynamic_cast<const METHODObjectMethodReturn*>(&outcome))
        return listText("records", *made);

    return "nothing";
}
