#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

/// A text with bounds on its length in bytes and a set of characters that it must not contain.
///
///     STRINGApiAttribute name("Name", 20, false, 1, 96, "<>&", "", "Name");
///     name.Validate("a<b");   // throws APIMethodError
class STRINGApiAttribute : public BASEApiAttribute {
public:
    /// A negative length means that there is no bound on that side; two lengths of 0 mean that
    /// nothing is checked at all, forbidden characters included.
    class STRINGAttributeProperties : public BASEAttributeProperties {
    public:
        STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                  bool secondFlag, std::int64_t minimum, std::int64_t maximum,
                                  const std::string& displayName);
        STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                  std::int64_t minimum, std::int64_t maximum,
                                  const std::string& displayName);
        STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                  std::int64_t minimum, std::int64_t maximum, std::string forbidden,
                                  std::string fourthText, const std::string& displayName);
        STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                  const std::string& displayName);

        std::int64_t GetMinimumLength() const { return m_minimum; }
        std::int64_t GetMaximumLength() const { return m_maximum; }
        /// Every character of it is forbidden.
        const std::string& GetForbidden() const { return m_forbidden; }
        /// Kept as declared; nothing here reads it.
        const std::string& GetFourthText() const { return m_fourthText; }

    private:
        std::int64_t m_minimum;
        std::int64_t m_maximum;
        std::string m_forbidden;
        std::string m_fourthText;
    };

    STRINGApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                       bool secondFlag, std::int64_t minimum, std::int64_t maximum,
                       const std::string& displayName);
    STRINGApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                       std::int64_t minimum, std::int64_t maximum, const std::string& displayName);
    STRINGApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                       std::int64_t minimum, std::int64_t maximum, const std::string& forbidden,
                       const std::string& fourthText, const std::string& displayName);
    STRINGApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                       const std::string& displayName);
    /// Takes any record; one without lengths accepts every text.
    explicit STRINGApiAttribute(std::unique_ptr<const BASEAttributeProperties> properties);

    std::string ToString(std::string value) const { return value; }
    std::string ParseString(std::string text) const { return text; }

    /// Message ids: 10763 too short, 10764 too long, 10011 a forbidden character.
    bool Validate(const std::string& value) const override;
    /// Compares as matchesText does.
    bool ApplyFilter(const APIAttributeFilter& filter, const std::string& value) const override;
};
