#include "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute.h"

#include <utility>

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"

namespace {

constexpr const char* kSource = "apiMgmt/apiStub/base/apiAttributes/baseApiAttribute";
constexpr unsigned int kNullPropertiesMsg = 10004;

}  // namespace

BASEApiAttribute::BASEAttributeProperties::BASEAttributeProperties(std::string xmlName,
                                                                   std::int32_t code,
                                                                   bool firstFlag, bool secondFlag,
                                                                   std::string displayName)
    : m_xmlName(std::move(xmlName)),
      m_code(code),
      m_firstFlag(firstFlag),
      m_secondFlag(secondFlag),
      m_displayName(std::move(displayName)) {}

BASEApiAttribute::BASEAttributeProperties::BASEAttributeProperties(std::string xmlName,
                                                                   std::int32_t code,
                                                                   bool firstFlag,
                                                                   std::string displayName)
    : BASEAttributeProperties(std::move(xmlName), code, firstFlag, false, std::move(displayName)) {}

BASEApiAttribute::BASEAttributeProperties::~BASEAttributeProperties() = default;

BASEApiAttribute::BASEApiAttribute(std::unique_ptr<const BASEAttributeProperties> properties)
    : m_properties(std::move(properties)) {
    if (!m_properties) {
        throw APIMethodError("Base API Attribute constructor: NULL pointer for properties",
                             ErrorStateEnum::InvalidArguments, kSource, __LINE__,
                             kNullPropertiesMsg, nullptr);
    }
}

BASEApiAttribute::BASEApiAttribute(const std::string& xmlName, std::int32_t code, bool firstFlag,
                                   const std::string& displayName)
    : BASEApiAttribute(
          std::make_unique<BASEAttributeProperties>(xmlName, code, firstFlag, displayName)) {}

BASEApiAttribute::~BASEApiAttribute() = default;

bool BASEApiAttribute::Validate(const std::string& /*value*/) const {
    return true;
}

bool BASEApiAttribute::ApplyFilter(const APIAttributeFilter& filter,
                                   const std::string& value) const {
    return matchesText(filter, value);
}
