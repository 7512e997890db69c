#include "apiMgmt/apiStub/base/methodReturns/stringMethodReturn.h"

#include <utility>

#include "apiMgmt/common/utils/stringUtil.h"

STRINGMethodReturn::STRINGMethodReturn() : STRINGMethodReturn(std::string()) {}

STRINGMethodReturn::STRINGMethodReturn(const std::string& value)
    : STRINGMethodReturn(value, true, nullptr) {}

STRINGMethodReturn::STRINGMethodReturn(std::string&& value)
    : BASEApiMethodReturn(true, nullptr), m_value(std::move(value)) {}

STRINGMethodReturn::STRINGMethodReturn(const std::string& value, bool successful,
                                       BASEApiMethod* method)
    : BASEApiMethodReturn(successful, method), m_value(value) {}

STRINGMethodReturn::STRINGMethodReturn(const std::string& value, bool successful,
                                       ErrorStateEnum state, const std::string& error,
                                       const std::string& localizedError,
                                       const std::string& errorDetail, BASEApiMethod* method)
    : BASEApiMethodReturn(successful, state, error, localizedError, errorDetail, method),
      m_value(value) {}

STRINGMethodReturn::STRINGMethodReturn(ErrorStateEnum state, const std::string& error,
                                       const std::string& localizedError,
                                       const std::string& errorDetail, bool successful)
    : BASEApiMethodReturn(successful, state, error, localizedError, errorDetail) {}

std::string STRINGMethodReturn::GetReturnString(ObjectReturnEncodeEnum) const {
    return Element("ReturnString", STRINGUtil::EscapeString(m_value, false));
}
