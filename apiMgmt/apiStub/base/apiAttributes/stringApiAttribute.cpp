#include "apiMgmt/apiStub/base/apiAttributes/stringApiAttribute.h"

#include <utility>

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/common/utils/stringUtil.h"

namespace {

constexpr const char* kSource = "stringApiAttribute";
constexpr unsigned int kForbiddenMsg = 10011;
constexpr unsigned int kTooShortMsg = 10763;
constexpr unsigned int kTooLongMsg = 10764;

[[noreturn]] void throwTooShort(const std::string& name, const std::string& value,
                                long long minimum) {
    throw APIMethodError(
        STRINGUtil::FormatStr("Attribute \"%s\" was \"%s\" [%d characters long], but must be a "
                              "string at least %lld characters",
                              name.c_str(), value.c_str(), static_cast<int>(value.size()), minimum),
        ErrorStateEnum::ParsingError, kSource, __LINE__, kTooShortMsg, "%s|%lld", name.c_str(),
        minimum);
}

[[noreturn]] void throwTooLong(const std::string& name, const std::string& value,
                               long long maximum) {
    throw APIMethodError(
        STRINGUtil::FormatStr("Attribute \"%s\" was \"%s\" [%d characters long], but must be a "
                              "string no more than %lld characters",
                              name.c_str(), value.c_str(), static_cast<int>(value.size()), maximum),
        ErrorStateEnum::ParsingError, kSource, __LINE__, kTooLongMsg, "%s|%lld", name.c_str(),
        maximum);
}

[[noreturn]] void throwForbidden(const std::string& name, const std::string& value,
                                 const std::string& forbidden) {
    throw APIMethodError(STRINGUtil::FormatStr(
                             "Attribute \"%s\" was \"%s\", but cannot contain these characters: %s",
                             name.c_str(), value.c_str(), forbidden.c_str()),
                         ErrorStateEnum::ParsingError, kSource, __LINE__, kForbiddenMsg, "%s",
                         name.c_str());
}

}  // namespace

using Properties = STRINGApiAttribute::STRINGAttributeProperties;

Properties::STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                      bool secondFlag, std::int64_t minimum, std::int64_t maximum,
                                      const std::string& displayName)
    : BASEAttributeProperties(xmlName, code, firstFlag, secondFlag, displayName),
      m_minimum(minimum),
      m_maximum(maximum) {}

Properties::STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                      std::int64_t minimum, std::int64_t maximum,
                                      const std::string& displayName)
    : STRINGAttributeProperties(xmlName, code, firstFlag, minimum, maximum, "", "", displayName) {}

Properties::STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                      std::int64_t minimum, std::int64_t maximum,
                                      std::string forbidden, std::string fourthText,
                                      const std::string& displayName)
    : BASEAttributeProperties(xmlName, code, firstFlag, displayName),
      m_minimum(minimum),
      m_maximum(maximum),
      m_forbidden(std::move(forbidden)),
      m_fourthText(std::move(fourthText)) {}

Properties::STRINGAttributeProperties(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                      const std::string& displayName)
    : STRINGAttributeProperties(xmlName, code, firstFlag, 0, 0, displayName) {}

STRINGApiAttribute::STRINGApiAttribute(const std::string& xmlName, std::int32_t code,
                                       bool firstFlag, bool secondFlag, std::int64_t minimum,
                                       std::int64_t maximum, const std::string& displayName)
    : STRINGApiAttribute(std::make_unique<Properties>(xmlName, code, firstFlag, secondFlag, minimum,
                                                      maximum, displayName)) {}

STRINGApiAttribute::STRINGApiAttribute(const std::string& xmlName, std::int32_t code,
                                       bool firstFlag, std::int64_t minimum, std::int64_t maximum,
                                       const std::string& displayName)
    : STRINGApiAttribute(
          std::make_unique<Properties>(xmlName, code, firstFlag, minimum, maximum, displayName)) {}

STRINGApiAttribute::STRINGApiAttribute(const std::string& xmlName, std::int32_t code,
                                       bool firstFlag, std::int64_t minimum, std::int64_t maximum,
                                       const std::string& forbidden, const std::string& fourthText,
                                       const std::string& displayName)
    : STRINGApiAttribute(std::make_unique<Properties>(xmlName, code, firstFlag, minimum, maximum,
                                                      forbidden, fourthText, displayName)) {}

STRINGApiAttribute::STRINGApiAttribute(const std::string& xmlName, std::int32_t code,
                                       bool firstFlag, const std::string& displayName)
    : STRINGApiAttribute(std::make_unique<Properties>(xmlName, code, firstFlag, displayName)) {}

STRINGApiAttribute::STRINGApiAttribute(std::unique_ptr<const BASEAttributeProperties> properties)
    : BASEApiAttribute(std::move(properties)) {}

bool STRINGApiAttribute::Validate(const std::string& value) const {
    const auto* bounds = dynamic_cast<const STRINGAttributeProperties*>(&GetProperties());
    if (!bounds) {
        return true;
    }
    const std::int64_t minimum = bounds->GetMinimumLength();
    const std::int64_t maximum = bounds->GetMaximumLength();
    const auto length = static_cast<std::int64_t>(value.size());
    if (minimum == 0 && maximum == 0) {
        return true;
    }
    if (minimum >= 0 && minimum > length) {
        throwTooShort(GetDisplayName(), value, minimum);
    }
    if (maximum >= 0 && maximum < length) {
        throwTooLong(GetDisplayName(), value, maximum);
    }
    if (value.find_first_of(bounds->GetForbidden()) != std::string::npos) {
        throwForbidden(GetDisplayName(), value, bounds->GetForbidden());
    }
    return true;
}

bool STRINGApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                     const std::string& value) const {
    return matchesText(filter, value);
}
