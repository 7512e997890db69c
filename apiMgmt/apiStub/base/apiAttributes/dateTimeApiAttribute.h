#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

class DATETimeObject;

/// An instant in its text form (dateTimeObject.h).
class DATETIMEApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const DATETimeObject& value) const;
    DATETimeObject ParseString(const std::string& text) const;

    /// Compares the instants, operators 2 to 6.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
