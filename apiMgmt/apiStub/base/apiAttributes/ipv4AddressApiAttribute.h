#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// A dotted IPv4 address: four decimal numbers from 0 to 255, without leading zeros. What is
/// no such address is written and read as "0.0.0.0".
class IPV4ADDRESSApiAttribute : public BASEApiAttribute {
public:
    using BASEApiAttribute::BASEApiAttribute;

    std::string ToString(const std::string& value) const;
    std::string ParseString(const std::string& text) const;

    /// Compares by the address as a number, operators 2 to 6; a text that is no address never
    /// matches.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
