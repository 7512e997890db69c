#include "apiMgmt/apiStub/base/methodReturns/intMethodReturn.h"

INTMethodReturn::INTMethodReturn(std::int32_t value) : INTMethodReturn(value, true, nullptr) {}

INTMethodReturn::INTMethodReturn(std::int32_t value, bool successful, BASEApiMethod* method)
    : BASEApiMethodReturn(successful, method), m_value(value) {}

std::string INTMethodReturn::GetReturnString(ObjectReturnEncodeEnum) const {
    return Element("ReturnInt", std::to_string(m_value));
}
