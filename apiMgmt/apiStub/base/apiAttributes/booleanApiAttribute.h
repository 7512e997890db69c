#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// A bool, written "True" or "False".
class BOOLEANApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(bool value) const;
    /// True for "1" and for "true" in any case, false for everything else.
    bool ParseString(const std::string& text) const;

    /// False comes before true.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
