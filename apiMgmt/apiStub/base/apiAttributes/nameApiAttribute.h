#pragma once

#include <cstdint>
#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/stringApiAttribute.h"

/// The name of an object: a text that is checked like any other.
class NAMEApiAttribute : public STRINGApiAttribute {
public:
    NAMEApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag, bool secondFlag,
                     std::int64_t minimum, std::int64_t maximum, const std::string& displayName)
        : STRINGApiAttribute(xmlName, code, firstFlag, secondFlag, minimum, maximum, displayName) {}
};
