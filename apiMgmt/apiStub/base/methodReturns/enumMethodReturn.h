#pragma once

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"

/// A return that carries an item of an enumeration by its XML name ("ReturnEnum").
class ENUMMethodReturn : public BASEApiMethodReturn {
public:
    explicit ENUMMethodReturn(bool successful, BASEApiMethod* method = nullptr);

    void SetReturnObject(const std::string& value) { m_value = value; }
    const std::string& GetValue() const { return m_value; }
    std::string GetReturnString(ObjectReturnEncodeEnum encode) const override;

private:
    std::string m_value;
};
