#include "apiMgmt/apiStub/base/apiAttributes/intApiAttribute.h"

#include <locale>
#include <sstream>

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/apiStub/base/filters/apiAttributeFilter.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/common/utils/stringUtil.h"

namespace {

constexpr const char* kSource = "intApiAttribute";
constexpr unsigned int kOutsideBothMsg = 10760;
constexpr unsigned int kBelowMinimumMsg = 10761;
constexpr unsigned int kAboveMaximumMsg = 10762;

[[noreturn]] void throwAboveMaximum(const std::string& name, long long value, long long maximum) {
    throw APIMethodError(
        STRINGUtil::FormatStr("Attribute \"%s\" was %lld, but must be less than or equal to %lld",
                              name.c_str(), value, maximum),
        ErrorStateEnum::ParsingError, kSource, __LINE__, kAboveMaximumMsg, "%s|%lld", name.c_str(),
        maximum);
}

[[noreturn]] void throwBelowMinimum(const std::string& name, long long value, long long minimum) {
    throw APIMethodError(STRINGUtil::FormatStr(
                             "Attribute \"%s\" was %lld, but must be greater than or equal to %lld",
                             name.c_str(), value, minimum),
                         ErrorStateEnum::ParsingError, kSource, __LINE__, kBelowMinimumMsg,
                         "%s|%lld", name.c_str(), minimum);
}

[[noreturn]] void throwOutsideBoth(const std::string& name, long long value, long long minimum,
                                   long long maximum) {
    throw APIMethodError(
        STRINGUtil::FormatStr("Attribute \"%s\" was %lld, but must be greater than or equal to "
                              "%lld and less than or equal to %lld",
                              name.c_str(), value, minimum, maximum),
        ErrorStateEnum::ParsingError, kSource, __LINE__, kOutsideBothMsg, "%s|%lld|%lld",
        name.c_str(), minimum, maximum);
}

}  // namespace

INTApiAttribute::INTAttributeProperties::INTAttributeProperties(const std::string& xmlName,
                                                                std::int32_t code, bool firstFlag,
                                                                std::int64_t minimum,
                                                                std::int64_t maximum,
                                                                const std::string& displayName)
    : BASEAttributeProperties(xmlName, code, firstFlag, displayName),
      m_minimum(minimum),
      m_maximum(maximum) {}

INTApiAttribute::INTApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                 std::int64_t minimum, std::int64_t maximum,
                                 const std::string& displayName)
    : INTApiAttribute(std::make_unique<INTAttributeProperties>(xmlName, code, firstFlag, minimum,
                                                               maximum, displayName)) {}

INTApiAttribute::INTApiAttribute(std::unique_ptr<const BASEAttributeProperties> properties)
    : BASEApiAttribute(std::move(properties)) {}

std::string INTApiAttribute::ToString(std::int64_t value) const {
    return std::to_string(value);
}

std::int64_t INTApiAttribute::ParseString(const std::string& text) const {
    std::istringstream stream(text);
    stream.imbue(std::locale::classic());
    std::int64_t value = 0;
    stream >> value;  // a failure leaves 0, or the nearest number that fits
    return value;
}

bool INTApiAttribute::Validate(const std::string& value) const {
    const auto* bounds = dynamic_cast<const INTAttributeProperties*>(&GetProperties());
    if (!bounds) {
        return true;
    }
    const std::int64_t number = ParseString(value);
    const std::int64_t minimum = bounds->GetMinimum();
    const std::int64_t maximum = bounds->GetMaximum();
    const bool tooSmall = minimum >= 0 && number < minimum;
    const bool tooLarge = maximum >= 0 && number > maximum;
    if (!tooSmall && !tooLarge) {
        return true;
    }
    if (minimum < 0) {
        throwAboveMaximum(GetDisplayName(), number, maximum);
    }
    if (maximum < 0) {
        throwBelowMinimum(GetDisplayName(), number, minimum);
    }
    throwOutsideBoth(GetDisplayName(), number, minimum, maximum);
}

bool INTApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                  const std::string& value) const {
    return !value.empty() &&
           matchesOrder(filter.GetType(), ParseString(value) <=> ParseString(filter.GetValue()));
}
