#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// The instance id of an object, such as "101.5".
class INSTANCEIDApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(std::string value) const { return value; }
    std::string ParseString(std::string text) const { return text; }

    /// Ids are names: compares as matchesText does, not by number.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
