#pragma once

#include <cstdint>

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"

/// A return that carries a number ("ReturnInt").
class INTMethodReturn : public BASEApiMethodReturn {
public:
    explicit INTMethodReturn(std::int32_t value);
    INTMethodReturn(std::int32_t value, bool successful, BASEApiMethod* method);

    std::int32_t GetValue() const { return m_value; }
    std::string GetReturnString(ObjectReturnEncodeEnum encode) const override;

private:
    std::int32_t m_value;
};
