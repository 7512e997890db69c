#include "apiMgmt/apiStub/base/methodReturns/boolMethodReturn.h"

BOOLMethodReturn::BOOLMethodReturn(bool value) : BOOLMethodReturn(value, true, nullptr) {}

BOOLMethodReturn::BOOLMethodReturn(bool value, bool /*successful*/, BASEApiMethod* method)
    : BASEApiMethodReturn(true, method), m_value(value) {}

std::string BOOLMethodReturn::GetReturnString(ObjectReturnEncodeEnum) const {
    return Element("ReturnBool", m_value ? "True" : "False");
}
