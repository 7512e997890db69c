#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

class GETListFilter;

/// A list filter in its text form (getListFilter.h).
class GETLISTFILTERApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const GETListFilter& value) const;
    GETListFilter ParseString(const std::string& text) const;

    /// Compares the whole text.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
