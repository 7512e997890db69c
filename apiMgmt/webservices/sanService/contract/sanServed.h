// Requests and responses of the thirteen operations that the service serves.
//
// How to add one: the two classes here, the operation in sanOperations.h, and the same in
// sanApi.wsdl.

// clang-format off
class ns1__Ping {
};
class ns1__PingResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__AddHccToSan {
    std::string                      sanId 1;
    std::string                      hccId 1;
    std::string*                     hccName 0;
    std::string                      hccKey 1;
    std::vector<ns1__IpAddressPort*> cfmIpAddresses 1;
};
class ns1__AddHccToSanResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__RemoveHccFromSan {
    std::string                      sanId 1;
    std::string                      hccId 1;
};
class ns1__RemoveHccFromSanResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__RenameHccInSan {
    std::string                      hccId 1;
    std::string*                     userToken 0;
    std::string                      sanId 1;
    std::string                      name 1;
};
class ns1__RenameHccInSanResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__AddServer {
    std::string                          sanId 1;
    ns1__hcnDiscoverableObject*          hcnInfo nullptr 1;
    std::vector<ns1__interfaceObject*>   intfInfo 0;
};
class ns1__AddServerResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__RemoveServer {
    std::string                      hccId 1;
    std::string                      sanId 1;
    std::string                      hcnId 1;
};
class ns1__RemoveServerResponse {
    ns1__resultObject*               return_ nullptr 1;
};

// The only served operation whose reply carries no result object.
class ns1__NewPrimaryCfmAddresses {
    std::string                      hccId 1;
    std::vector<ns1__IpAddressPort*> mgmtIpAddresses 1;
};
class ns1__NewPrimaryCfmAddressesResponse {
    ns1__void*                       return_ nullptr 1;
};

class ns1__HccAttachVolume {
    std::string                      hccId 1;
    std::string                      hcVolumeId 1;
    std::string                      sanId 1;
    std::string                      sanVolumeId 1;
};
class ns1__HccAttachVolumeResponse {
    ns1__scsiInfo*                   origScsiInfo nullptr 1;
    ns1__scsiInfo*                   aliasScsiInfo nullptr 1;
};

class ns1__HccDetachVolume {
    std::string                      hccId 1;
    std::string                      sanId 1;
    std::string                      sanVolumeId 1;
};
class ns1__HccDetachVolumeResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__MakeDataAvailable {
    std::string                      hccId 1;
    std::string                      hcnId 1;
    std::string                      sanId 1;
    std::string                      sanVolumeId 1;
};
class ns1__MakeDataAvailableResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__MakeDataUnavailable {
    std::string                      hccId 1;
    std::string                      hcnId 1;
    std::string                      sanId 1;
    std::string                      sanVolumeId 1;
};
class ns1__MakeDataUnavailableResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__FlushComplete {
    std::string                      hccId 1;
    std::string                      sanId 1;
    std::string                      sanVolumeId 1;
    std::string                      snapshotId 1;
};
class ns1__FlushCompleteResponse {
    ns1__resultObject*               return_ nullptr 1;
};

class ns1__SnapshotPrepareComplete {
    std::string                      hccId 1;
    std::string                      sanId 1;
    std::string                      sanVolumeId 1;
    std::string                      snapshotId 1;
};
class ns1__SnapshotPrepareCompleteResponse {
    ns1__resultObject*               return_ nullptr 1;
};
// clang-format on
