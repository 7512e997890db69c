#include "apiMgmt/common/ipc/generalUtils.h"

#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/common/ipc/apiMgrPort.h"

GPBComEndpoint GENERALUtils::GetEndpoint(APIEndpoint endpoint) {
    if (endpoint != APIManagerEndpoint) {
        throw APISocketError("apiMgmt/common/ipc/generalUtils", __LINE__, "Unknown endpoint");
    }
    return {"127.0.0.1", getApiMgrPort()};
}
