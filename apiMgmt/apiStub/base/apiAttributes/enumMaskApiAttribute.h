#pragma once

#include <string>
#include <vector>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// A set of enumeration items: their XML names with a blank between them.
class ENUMMASKApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const std::vector<std::string>& value) const;
    /// Blanks that follow each other separate no empty item.
    std::vector<std::string> ParseString(const std::string& text) const;

    /// Compares the whole text.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
