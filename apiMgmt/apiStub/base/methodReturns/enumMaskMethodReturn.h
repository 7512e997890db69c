#pragma once

#include <vector>

#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"

/// A return that carries several items of an enumeration ("ReturnEnumMask"): their XML names,
/// separated by blanks.
class ENUMMaskMethodReturn : public BASEApiMethodReturn {
public:
    explicit ENUMMaskMethodReturn(bool successful, BASEApiMethod* method = nullptr);

    void SetReturnObject(const std::string& value) { m_value = value; }
    const std::string& GetValue() const { return m_value; }
    std::string GetReturnString(ObjectReturnEncodeEnum encode) const override;

    /// The names in a mask, in its order. Any run of white space separates two of them, so that
    /// an indented reply reads like a plain one; an empty mask has none.
    static std::vector<std::string> GetEnumList(const std::string& mask);

private:
    std::string m_value;
};
