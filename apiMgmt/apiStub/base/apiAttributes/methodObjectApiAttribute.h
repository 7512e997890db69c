#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

class BASEApiMethodObject;

/// A method-object, as its own XML with escaped values. It is read back by
/// `BASEApiMethodObject::Parse`.
class METHODOBJECTApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const BASEApiMethodObject& value) const;

    /// Compares the whole text.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
