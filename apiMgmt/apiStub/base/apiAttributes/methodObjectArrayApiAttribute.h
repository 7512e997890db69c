#pragma once

#include <string>
#include <vector>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

class BASEApiMethodObject;

/// A list of method-objects: their XML forms with escaped values, one behind the other.
class METHODOBJECTARRAYApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    /// The pointers are only read; a null one is skipped.
    std::string ToString(const std::vector<const BASEApiMethodObject*>& value) const;

    /// Compares the whole text.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
