#pragma once

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"

/// A return that carries a truth value ("ReturnBool").
class BOOLMethodReturn : public BASEApiMethodReturn {
public:
    explicit BOOLMethodReturn(bool value);
    /// The second argument is ignored: a return that carries a truth value is always
    /// successful, unlike the other kinds.
    BOOLMethodReturn(bool value, bool successful, BASEApiMethod* method);

    bool GetValue() const { return m_value; }
    std::string GetReturnString(ObjectReturnEncodeEnum encode) const override;

private:
    bool m_value;
};
