#pragma once

#include <memory>
#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

class APIObjectInstance;

/// A reference to one object, in the text form of APIObjectInstance.
class OBJECTApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const APIObjectInstance& value) const;
    /// The empty text gives none. The instance belongs to the caller.
    std::unique_ptr<APIObjectInstance> ParseString(const std::string& text) const;

    /// Compares the whole text.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
