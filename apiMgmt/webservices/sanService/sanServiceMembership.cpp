// How clusters join and leave the array and keep their membership current. The array that a
// request names (sanId) is this one, so it is not passed on.

#include <utility>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/common/utils/secretText.h"
#include "apiMgmt/webservices/sanService/requestRecords.h"
#include "apiMgmt/webservices/sanService/sanService.h"

namespace {

// What a method's own setter for a list does with records, for the text that they became.
void setRecords(BASEApiMethod& method, const BASEApiAttribute& list, std::string text) {
    method.PutStringDirect(list.GetXmlName(), std::move(text));
}

}  // namespace

int SANService::Ping(SanApi::ns1__Ping* request, SanApi::ns1__PingResponse* response) {
    // Clients send a call without arguments as nil.
    SanApi::ns1__Ping empty;
    if (request == nullptr && m_dispatching) {
        request = &empty;
    }
    return ServeOperation(ServiceLog::kPing, request, response, [&] {
        const APITarnHostCache::APITarnHostCachePingMethod method;
        return RunMethod(method, &response->return_);
    });
}

int SANService::AddHccToSan(SanApi::ns1__AddHccToSan* request,
                            SanApi::ns1__AddHccToSanResponse* response) {
    return ServeOperation(ServiceLog::kAddHcc, request, response, [&] {
        const SecretScope keyCleared(request->hccKey);
        std::string addresses =
            addressRecords(request->cfmIpAddresses, ServiceLog::kAddHccSkip, MissingAddress::Warn);
        if (addresses.empty()) {
            return soap_senderfault("AddHccToSan: IpAddresses not specified or invalid", "");
        }
        APITarnHostCache::APITarnHostCacheAddHccToSanMethod method;
        method.SetHccId(request->hccId);
        if (request->hccName != nullptr) {
            method.SetHccName(*request->hccName);
        }
        method.SetHccKey(request->hccKey);
        setRecords(method, *method.GetIpv4AddressPortListAttr(), std::move(addresses));
        return RunMethod(method, &response->return_);
    });
}

int SANService::RemoveHccFromSan(SanApi::ns1__RemoveHccFromSan* request,
                                 SanApi::ns1__RemoveHccFromSanResponse* response) {
    return ServeOperation(ServiceLog::kRemoveHcc, request, response, [&] {
        APITarnHostCache::APITarnHostCacheRemoveHccFromSanMethod method;
        method.SetHccId(request->hccId);
        return RunMethod(method, &response->return_);
    });
}

// The one operation that is refused: a cluster's name is the array's to change.
int SANService::RenameHccInSan(SanApi::ns1__RenameHccInSan* request,
                               SanApi::ns1__RenameHccInSanResponse* response) {
    return ServeOperation(ServiceLog::kRename, request, response, [&] {
        return soap_senderfault("RenameHccInSan is not supported by SanApi interface.", "");
    });
}

int SANService::AddServer(SanApi::ns1__AddServer* request,
                          SanApi::ns1__AddServerResponse* response) {
    return ServeOperation(ServiceLog::kAddServer, request, response, [&] {
        const SanApi::ns1__hcnDiscoverableObject* node = request->hcnInfo;
        if (node == nullptr) {
            return soap_senderfault(gNullPointerMsg, "");
        }
        m_header.hccId = node->hccId;
        APITarnHostCache::APITarnHostCacheAddServerMethod method;
        method.SetHccId(node->hccId);
        method.SetHcnId(node->hcnId);
        if (node->hostname != nullptr) {
            method.SetHostname(*node->hostname);
        }
        if (node->os != nullptr) {
            method.SetOsType(node->os->osType);
            method.SetOsVersion(node->os->osRelease);
        }
        std::string addresses =
            addressRecords(node->mgmtIpAddresses, ServiceLog::kAddServerSkip, MissingAddress::Warn);
        setRecords(method, *method.GetIpv4AddressPortListAttr(), std::move(addresses));
        std::string interfaces = interfaceRecords(request->intfInfo);
        if (!interfaces.empty()) {
            setRecords(method, *method.GetHcnStorageInterfaceListAttr(), std::move(interfaces));
        }
        return RunMethod(method, &response->return_);
    });
}

int SANService::RemoveServer(SanApi::ns1__RemoveServer* request,
                             SanApi::ns1__RemoveServerResponse* response) {
    return ServeOperation(ServiceLog::kRemoveServer, request, response, [&] {
        APITarnHostCache::APITarnHostCacheRemoveServerMethod method;
        method.SetHccId(request->hccId);
        method.SetHcnId(request->hcnId);
        return RunMethod(method, &response->return_);
    });
}

int SANService::NewPrimaryCfmAddresses(SanApi::ns1__NewPrimaryCfmAddresses* request,
                                       SanApi::ns1__NewPrimaryCfmAddressesResponse* response) {
    return ServeOperation(ServiceLog::kNewCfm, request, response, [&] {
        APITarnHostCache::APITarnHostCacheNewPrimaryCfmAddressMethod method;
        method.SetHccId(request->hccId);
        std::string addresses = addressRecords(request->mgmtIpAddresses, ServiceLog::kNewCfmSkip,
                                               MissingAddress::Ignore);
        if (!addresses.empty()) {
            setRecords(method, *method.GetManagementIpAddressListAttr(), std::move(addresses));
        }
        response->return_ = nullptr;
        SanApi::ns1__resultObject* unused = nullptr;
        return RunMethod(method, &unused);
    });
}
