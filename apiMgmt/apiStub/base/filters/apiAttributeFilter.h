#pragma once

#include <string>

#include "apiMgmt/apiStub/base/filters/filterType.h"

/// One condition of a list filter: an attribute, an operator and the value to compare with.
///
///     APIAttributeFilter::Parse("Name eq My-Volume").ToString()   // "Name = My&hy&Volume"
class APIAttributeFilter {
public:
    /// The default condition: no name, no operator, no value.
    APIAttributeFilter() = default;
    APIAttributeFilter(std::string name, FILTERType type, std::string value);

    /// Reads "NAME OPERATOR VALUE"; the value keeps further blanks. Any other form gives the
    /// default condition.
    static APIAttributeFilter Parse(const std::string& text);

    /// Name, operator and value, joined by blanks; hyphens in the value are escaped.
    std::string ToString() const;

    /// Case matters; a text that names no operator gives FILTERType::None.
    static FILTERType GetFilterTypeFromString(const std::string& text);
    /// The first of the operator's texts; empty for a number that names no operator.
    static std::string GetFilterTypeAsString(FILTERType type);

    const std::string& GetName() const { return m_name; }
    FILTERType GetType() const { return m_type; }
    const std::string& GetValue() const { return m_value; }

    bool operator==(const APIAttributeFilter&) const = default;

private:
    std::string m_name;
    FILTERType m_type = FILTERType::None;
    std::string m_value;
};
