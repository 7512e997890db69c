#include "apiMgmt/apiStub/base/apiObjects/base/baseApiAssociation.h"

#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/common/utils/stringUtil.h"

namespace {

constexpr const char* kSource = "apiMgmt/apiStub/base/apiObjects/base/baseApiAssociation";
constexpr unsigned int kNoInstanceIdMsg = 10009;

}  // namespace

BASEApiAssociation::BASEApiAssociation() : BASEApiMethod(true) {}

BASEApiAssociation::BASEApiAssociation(const ValueMap& attributes)
    : BASEApiMethod(attributes, true) {}

BASEApiAssociation::BASEApiAssociation(const std::string& instanceId) : BASEApiAssociation() {
    SetInstanceId(instanceId);
}

bool BASEApiAssociation::AsyncAllowed() const {
    return false;
}

void BASEApiAssociation::ValidateRequiredAttributes() const {
    if (GetInstanceId().empty()) {
        throw APIMethodError(
            STRINGUtil::FormatStr("InstanceID not specified for association [%s::%s]",
                                  GetObjectName().c_str(), GetMethodName().c_str()),
            ErrorStateEnum::InvalidValue, kSource, __LINE__, kNoInstanceIdMsg, nullptr);
    }
}
