#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"
#include "apiMgmt/apiStub/base/filters/filterType.h"

/// Operator of a condition in the array's own numbering.
enum class TARNFilterType : int {
    Unknown = 0,
    Equals = 1,
    GreaterThan = 2,
    GreaterThanOrEqual = 3,
    LessThan = 4,
    LessThanOrEqual = 5,
    Contains = 6,
    StartsWith = 7,
};

/// One condition in the form in which the array takes it.
class FILTERItem {
public:
    static const ENUMIdStrList<TARNFilterType> gTARNFilterTypeEnumIdStrList;

    FILTERItem() = default;
    FILTERItem(std::string name, std::string value, TARNFilterType type);

    /// The operator with that XML name, Unknown when there is none.
    static TARNFilterType GetFilterTypeFromString(const std::string& text);
    /// XML name of an operator.
    static std::string GetFilterTypeAsString(TARNFilterType type);
    /// The array's operator for a list filter's.
    static TARNFilterType GetTarnFilterType(FILTERType type);

    /// Display text of this condition's operator.
    std::string GetTypeString() const;

    const std::string& GetName() const { return m_name; }
    const std::string& GetValue() const { return m_value; }
    TARNFilterType GetType() const { return m_type; }

private:
    std::string m_name;
    std::string m_value;
    TARNFilterType m_type = TARNFilterType::Unknown;
};
