// How a cluster and the array coordinate a volume's life. Neither the array that a request names
// (sanId) nor the cluster's own name for the volume (hcVolumeId) is passed on.

#include <memory>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"
#include "apiMgmt/webservices/sanService/sanService.h"

namespace {

// The SCSI identities that a return carries, or null. Owned by the return.
const APINorvaneScsiInformation* scsiInformationOf(const BASEApiMethodReturn* ret) {
    const auto* typed = dynamic_cast<const METHODObjectMethodReturn*>(ret);
    return typed != nullptr ? dynamic_cast<const APINorvaneScsiInformation*>(typed->GetObject())
                            : nullptr;
}

}  // namespace

SanApi::ns1__scsiInfo* SANService::AllocScsiInfo(const std::string& deviceId,
                                                 const std::string& serial) {
    SanApi::ns1__scsiInfo& info = RequireAllocated(
        SanApi::soap_instantiate_ns1__scsiInfo(this, -1, nullptr, nullptr, nullptr));
    info.deviceId = deviceId;
    info.serialNumber = AllocSoapString(serial);
    return &info;
}

int SANService::HccAttachVolume(SanApi::ns1__HccAttachVolume* request,
                                SanApi::ns1__HccAttachVolumeResponse* response) {
    return ServeOperation(ServiceLog::kAttach, request, response, [&] {
        APITarnHostCache::APITarnHostCacheHccAttachVolumeMethod method;
        method.SetHccId(request->hccId);
        method.SetVolumeId(request->sanVolumeId);
        const std::unique_ptr<const BASEApiMethodReturn> ret(ExecuteMethod(method, nullptr));
        SanApi::ns1__resultObject* unused = nullptr;
        if (const int refused = ParseXMLResponse(&unused, ret.get()); refused != SOAP_OK) {
            return refused;
        }
        const APINorvaneScsiInformation* scsi = scsiInformationOf(ret.get());
        if (scsi == nullptr) {
            return soap_receiverfault("Failed to attach volume", "");
        }
        response->origScsiInfo =
            AllocScsiInfo(scsi->GetOriginalScsiDeviceId(), scsi->GetOriginalScsiSerialNumber());
        response->aliasScsiInfo =
            AllocScsiInfo(scsi->GetAliasScsiDeviceId(), scsi->GetAliasScsiSerialNumber());
        return SOAP_OK;
    });
}

int SANService::HccDetachVolume(SanApi::ns1__HccDetachVolume* request,
                                SanApi::ns1__HccDetachVolumeResponse* response) {
    return ServeOperation(ServiceLog::kDetach, request, response, [&] {
        APITarnHostCache::APITarnHostCacheHccDetachVolumeMethod method;
        method.SetHccId(request->hccId);
        method.SetVolumeId(request->sanVolumeId);
        return RunMethod(method, &response->return_);
    });
}

int SANService::MakeDataAvailable(SanApi::ns1__MakeDataAvailable* request,
                                  SanApi::ns1__MakeDataAvailableResponse* response) {
    return ServeOperation(ServiceLog::kAvailable, request, response, [&] {
        APITarnHostCache::APITarnHostCacheMakeDataAvailableMethod method;
        method.SetHccId(request->hccId);
        method.SetHcnId(request->hcnId);
        method.SetVolumeId(request->sanVolumeId);
        return RunMethod(method, &response->return_);
    });
}

int SANService::MakeDataUnavailable(SanApi::ns1__MakeDataUnavailable* request,
                                    SanApi::ns1__MakeDataUnavailableResponse* response) {
    return ServeOperation(ServiceLog::kUnavailable, request, response, [&] {
        APITarnHostCache::APITarnHostCacheMakeDataUnavailableMethod method;
        method.SetHccId(request->hccId);
        method.SetHcnId(request->hcnId);
        method.SetVolumeId(request->sanVolumeId);
        return RunMethod(method, &response->return_);
    });
}

int SANService::FlushComplete(SanApi::ns1__FlushComplete* request,
                              SanApi::ns1__FlushCompleteResponse* response) {
    return ServeOperation(ServiceLog::kFlushed, request, response, [&] {
        APITarnHostCache::APITarnHostCacheFlushCompleteMethod method;
        method.SetHccId(request->hccId);
        method.SetVolumeId(request->sanVolumeId);
        method.SetSnapshotId(request->snapshotId);
        // The opaque data of a flush would travel as a blob; clusters send none, so it is empty
        // and no blob goes out.
        const std::map<std::string, std::string> blobs{
            {method.GetSanOpaqueAttr()->GetXmlName(), method.GetSanOpaque()}};
        return RunMethod(method, &response->return_, &blobs);
    });
}

int SANService::SnapshotPrepareComplete(SanApi::ns1__SnapshotPrepareComplete* request,
                                        SanApi::ns1__SnapshotPrepareCompleteResponse* response) {
    return ServeOperation(ServiceLog::kPrepared, request, response, [&] {
        APITarnHostCache::APITarnHostCacheSnapshotPrepareCompleteMethod method;
        method.SetHccId(request->hccId);
        method.SetVolumeId(request->sanVolumeId);
        method.SetSnapshotId(request->snapshotId);
        return RunMethod(method, &response->return_);
    });
}
