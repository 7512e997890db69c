#pragma once

#include <string>

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"

/// Leads from one object, given by its instance id, to related ones.
///
///     class APITarnServerHbaListAssociation : public BASEApiAssociation {
///         API_ASSOCIATION(TarnServer, HbaList);
///     };
class BASEApiAssociation : public BASEApiMethod {
public:
    BASEApiAssociation();
    explicit BASEApiAssociation(const ValueMap& attributes);
    explicit BASEApiAssociation(const std::string& instanceId);

    /// Never.
    bool AsyncAllowed() const override;
    /// Throws APIMethodError when the instance id is empty.
    void ValidateRequiredAttributes() const override;

    // clang-format off
    //            XML name    display name   kind        code
    API_ATTRIBUTE(InstanceId, "Instance Id", INSTANCEID, 30);
    // clang-format on
};

/// All that an association class states.
#define API_ASSOCIATION(Object, Command)                                      \
public:                                                                       \
    API##Object##Command##Association() = default;                            \
    explicit API##Object##Command##Association(const ValueMap& attributes)    \
        : BASEApiAssociation(attributes) {}                                   \
    explicit API##Object##Command##Association(const std::string& instanceId) \
        : BASEApiAssociation(instanceId) {}                                   \
    API_METHOD_NAMES(Object, Command)
