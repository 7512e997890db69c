#include "apiMgmt/apiStub/base/methodReturns/enumMethodReturn.h"

#include "apiMgmt/common/utils/stringUtil.h"

ENUMMethodReturn::ENUMMethodReturn(bool successful, BASEApiMethod* method)
    : BASEApiMethodReturn(successful, method) {}

std::string ENUMMethodReturn::GetReturnString(ObjectReturnEncodeEnum) const {
    return Element("ReturnEnum", STRINGUtil::EscapeString(m_value, false));
}
