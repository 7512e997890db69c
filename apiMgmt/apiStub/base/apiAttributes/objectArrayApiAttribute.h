#pragma once

#include <string>
#include <vector>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

class APIObjectInstance;

/// A list of references to objects: their text forms, joined with ":"; a colon inside one is
/// written "-co-".
class OBJECTARRAYApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const std::vector<APIObjectInstance>& value) const;
    /// An empty piece is no reference and is skipped.
    std::vector<APIObjectInstance> ParseString(const std::string& text) const;

    /// Compares the whole text.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
