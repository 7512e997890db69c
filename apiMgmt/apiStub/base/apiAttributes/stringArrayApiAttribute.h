#pragma once

#include <string>
#include <vector>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// A list of texts, joined with ":"; a colon inside an item is written "-co-".
class STRINGARRAYApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const std::vector<std::string>& value) const;
    std::vector<std::string> ParseString(const std::string& text) const;

    /// Compares the whole text.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
