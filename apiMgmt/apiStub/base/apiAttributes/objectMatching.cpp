#include "apiMgmt/apiStub/base/apiAttributes/objectMatching.h"

#include "apiMgmt/apiStub/base/apiAttributes/filterMatching.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectInstance.h"

bool MatchesInstance(const APIAttributeFilter& filter, const APIObjectInstance& instance) {
    return MatchesAnyText(
        filter, {instance.GetInstanceId(), instance.GetInstanceName(), instance.ToString()});
}
