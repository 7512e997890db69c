#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// The XML name of an item of an enumeration list (enumIdStrList.h).
class ENUMApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(std::string value) const { return value; }
    /// Drops white space at both ends.
    std::string ParseString(const std::string& text) const;

    /// Compares the names as matchesText does.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
