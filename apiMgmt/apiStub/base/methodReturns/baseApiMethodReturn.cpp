#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"

#include <ostream>

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"
#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"

BASEApiMethodReturn::BASEApiMethodReturn() {
    Initialize();
}

BASEApiMethodReturn::BASEApiMethodReturn(bool successful, BASEApiMethod* method)
    : m_method(method) {
    Initialize();
    SetSuccessful(successful);
}

BASEApiMethodReturn::BASEApiMethodReturn(bool successful, ErrorStateEnum state,
                                         const std::string& error,
                                         const std::string& localizedError,
                                         const std::string& errorDetail, BASEApiMethod* method)
    : m_method(method) {
    Initialize(successful, state, error, localizedError, errorDetail);
}

BASEApiMethodReturn::~BASEApiMethodReturn() = default;

void BASEApiMethodReturn::Initialize() {
    Initialize(true, ErrorStateEnum::NoError, "", "", "");
}

void BASEApiMethodReturn::Initialize(bool successful, ErrorStateEnum state,
                                     const std::string& error, const std::string& localizedError,
                                     const std::string& errorDetail) {
    SetSuccessful(successful);
    SetErrorCode(state);
    SetError(error);
    SetLocalizedError(localizedError);
    SetErrorDetail(errorDetail);
}

std::string BASEApiMethodReturn::GetReturnString(ObjectReturnEncodeEnum) const {
    return {};
}

std::string BASEApiMethodReturn::ToString(ObjectReturnEncodeEnum encode) {
    SetReturnObjectEncode(encode);
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<compapi>" +
           BASEApiObject::ToString(ObjectReturnEncodeEnum::Xml) + GetReturnString(encode) +
           "</compapi>";
}

std::string BASEApiMethodReturn::Element(const char* tag, const std::string& value) {
    std::string element;
    XMLText::AppendElement(element, tag, value);
    return element;
}

std::ostream& operator<<(std::ostream& stream, const BASEApiMethodReturn& outcome) {
    const bool successful = outcome.GetSuccessful();
    stream << "success=" << (successful ? 1 : 0) << '\n';
    if (!successful) {
        stream << "error code=" << static_cast<int>(outcome.GetErrorCode()) << '\n'
               << "error message=" << outcome.GetError() << '\n';
    }
    if (const BASEApiMethod* method = outcome.GetMethod()) {
        stream << "method name=" << method->GetMethodName() << '\n'
               << "object name=" << method->GetObjectName() << '\n';
    }
    return stream;
}
