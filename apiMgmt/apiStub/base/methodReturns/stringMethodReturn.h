#pragma once

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"

/// A return that carries a text ("ReturnString").
class STRINGMethodReturn : public BASEApiMethodReturn {
public:
    /// Successful, with an empty text.
    STRINGMethodReturn();
    explicit STRINGMethodReturn(const std::string& value);
    explicit STRINGMethodReturn(std::string&& value);
    STRINGMethodReturn(const std::string& value, bool successful, BASEApiMethod* method);
    STRINGMethodReturn(const std::string& value, bool successful, ErrorStateEnum state,
                       const std::string& error, const std::string& localizedError,
                       const std::string& errorDetail, BASEApiMethod* method);
    STRINGMethodReturn(ErrorStateEnum state, const std::string& error,
                       const std::string& localizedError, const std::string& errorDetail,
                       bool successful);

    const std::string& GetValue() const { return m_value; }
    std::string GetReturnString(ObjectReturnEncodeEnum encode) const override;

private:
    std::string m_value;
};
