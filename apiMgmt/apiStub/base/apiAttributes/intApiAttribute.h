#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// A signed 64-bit number in decimal, with bounds.
///
///     INTApiAttribute port("Port", 20, false, 0, -1, "Port");   // 0 or more
///     port.Validate("-1");                                      // throws APIMethodError
class INTApiAttribute : public BASEApiAttribute {
public:
    /// A negative bound means that there is none on that side; the many attributes declared
    /// with a minimum of -2147483647 are meant to accept every value.
    class INTAttributeProperties : public BASEAttributeProperties {
    public:
        INTAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                               std::int64_t minimum, std::int64_t maximum,
                               const std::string& displayName);

        std::int64_t GetMinimum() const { return m_minimum; }
        std::int64_t GetMaximum() const { return m_maximum; }

    private:
        std::int64_t m_minimum;
        std::int64_t m_maximum;
    };

    INTApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                    std::int64_t minimum, std::int64_t maximum, const std::string& displayName);
    /// Takes any record; one without bounds accepts every number.
    explicit INTApiAttribute(std::unique_ptr<const BASEAttributeProperties> properties);

    std::string ToString(std::int64_t value) const;
    /// The number at the text's start, 0 when there is none; clamped when it does not fit.
    std::int64_t ParseString(const std::string& text) const;

    /// Message ids: 10760 outside both bounds, 10761 below the only one, 10762 above the only
    /// one.
    bool Validate(const std::string& value) const override;
    /// Compares as numbers, operators 2 to 6.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
