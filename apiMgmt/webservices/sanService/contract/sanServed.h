// The operations that the service serves: what each asks and answers, and its place in the skeleton.
//
// The order of the operations is that in which the dispatcher compares the tag of the body element
// and in which the virtual slots of the skeleton follow each other. The SOAPAction is not looked at.
//
// How to add one: its request with a /// line that says what it does, its response, and its
// prototype with the (empty) SOAPAction, at the end. docs/addingOperations.md tells what follows from it.

// clang-format off
/// A cluster joins the array.
class ns1__AddHccToSan {
    std::string                      sanId 1;             ///< the array
    std::string                      hccId 1;             ///< the cluster that joins
    std::string*                     hccName 0;           ///< its name for people
    std::string                      hccKey 1;            ///< its key
    std::vector<ns1__IpAddressPort*> cfmIpAddresses 1;    ///< where its fabric managers are, one at least
};
class ns1__AddHccToSanResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: AddHccToSan ""
int __ns1__AddHccToSan(ns1__AddHccToSan* ns1__AddHccToSan_, ns1__AddHccToSanResponse* ns1__AddHccToSanResponse_);

/// A cluster leaves the array.
class ns1__RemoveHccFromSan {
    std::string                      sanId 1;             ///< the array
    std::string                      hccId 1;             ///< the cluster that leaves
};
class ns1__RemoveHccFromSanResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: RemoveHccFromSan ""
int __ns1__RemoveHccFromSan(ns1__RemoveHccFromSan* ns1__RemoveHccFromSan_, ns1__RemoveHccFromSanResponse* ns1__RemoveHccFromSanResponse_);

/// A server becomes a node of its cluster.
class ns1__AddServer {
    std::string                        sanId 1;           ///< the array
    ns1__hcnDiscoverableObject*        hcnInfo nullptr 1; ///< the server, as the cluster sees it
    std::vector<ns1__interfaceObject*> intfInfo 0;        ///< its interfaces to the storage
};
class ns1__AddServerResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: AddServer ""
int __ns1__AddServer(ns1__AddServer* ns1__AddServer_, ns1__AddServerResponse* ns1__AddServerResponse_);

/// A server stops being a node of its cluster.
class ns1__RemoveServer {
    std::string                      hccId 1;             ///< the cluster
    std::string                      sanId 1;             ///< the array
    std::string                      hcnId 1;             ///< the server that leaves
};
class ns1__RemoveServerResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: RemoveServer ""
int __ns1__RemoveServer(ns1__RemoveServer* ns1__RemoveServer_, ns1__RemoveServerResponse* ns1__RemoveServerResponse_);

/// A cluster begins to cache a volume of the array.
class ns1__HccAttachVolume {
    std::string                      hccId 1;             ///< the cluster
    std::string                      hcVolumeId 1;        ///< the volume, as the cluster names it
    std::string                      sanId 1;             ///< the array
    std::string                      sanVolumeId 1;       ///< the volume, as the array names it
};
class ns1__HccAttachVolumeResponse {
    ns1__scsiInfo*                   origScsiInfo nullptr 1;  ///< the identity of the volume itself
    ns1__scsiInfo*                   aliasScsiInfo nullptr 1; ///< the identity of its alias
};
//gsoap ns1 service method-action: HccAttachVolume ""
int __ns1__HccAttachVolume(ns1__HccAttachVolume* ns1__HccAttachVolume_, ns1__HccAttachVolumeResponse* ns1__HccAttachVolumeResponse_);

/// A cluster stops caching a volume.
class ns1__HccDetachVolume {
    std::string                      hccId 1;             ///< the cluster
    std::string                      sanId 1;             ///< the array
    std::string                      sanVolumeId 1;       ///< the volume, as the array names it
};
class ns1__HccDetachVolumeResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: HccDetachVolume ""
int __ns1__HccDetachVolume(ns1__HccDetachVolume* ns1__HccDetachVolume_, ns1__HccDetachVolumeResponse* ns1__HccDetachVolumeResponse_);

/// Makes a volume's data available on one server.
class ns1__MakeDataAvailable {
    std::string                      hccId 1;             ///< the cluster
    std::string                      hcnId 1;             ///< the server
    std::string                      sanId 1;             ///< the array
    std::string                      sanVolumeId 1;       ///< the volume, as the array names it
};
class ns1__MakeDataAvailableResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: MakeDataAvailable ""
int __ns1__MakeDataAvailable(ns1__MakeDataAvailable* ns1__MakeDataAvailable_, ns1__MakeDataAvailableResponse* ns1__MakeDataAvailableResponse_);

/// Makes a volume's data unavailable on one server.
class ns1__MakeDataUnavailable {
    std::string                      hccId 1;             ///< the cluster
    std::string                      hcnId 1;             ///< the server
    std::string                      sanId 1;             ///< the array
    std::string                      sanVolumeId 1;       ///< the volume, as the array names it
};
class ns1__MakeDataUnavailableResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: MakeDataUnavailable ""
int __ns1__MakeDataUnavailable(ns1__MakeDataUnavailable* ns1__MakeDataUnavailable_, ns1__MakeDataUnavailableResponse* ns1__MakeDataUnavailableResponse_);

/// The cluster reports that it has flushed its cache for a snapshot.
class ns1__FlushComplete {
    std::string                      hccId 1;             ///< the cluster
    std::string                      sanId 1;             ///< the array
    std::string                      sanVolumeId 1;       ///< the volume, as the array names it
    std::string                      snapshotId 1;        ///< the snapshot
};
class ns1__FlushCompleteResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: FlushComplete ""
int __ns1__FlushComplete(ns1__FlushComplete* ns1__FlushComplete_, ns1__FlushCompleteResponse* ns1__FlushCompleteResponse_);

/// The cluster reports the addresses of the fabric manager that is its primary from now on. Its
/// reply is the only one without a result object.
class ns1__NewPrimaryCfmAddresses {
    std::string                      hccId 1;             ///< the cluster
    std::vector<ns1__IpAddressPort*> mgmtIpAddresses 1;   ///< where its new primary manager is
};
class ns1__NewPrimaryCfmAddressesResponse {
    ns1__void*                       return_ nullptr 1;
};
//gsoap ns1 service method-action: NewPrimaryCfmAddresses ""
int __ns1__NewPrimaryCfmAddresses(ns1__NewPrimaryCfmAddresses* ns1__NewPrimaryCfmAddresses_, ns1__NewPrimaryCfmAddressesResponse* ns1__NewPrimaryCfmAddressesResponse_);

/// The cluster reports that it is prepared for a snapshot.
class ns1__SnapshotPrepareComplete {
    std::string                      hccId 1;             ///< the cluster
    std::string                      sanId 1;             ///< the array
    std::string                      sanVolumeId 1;       ///< the volume, as the array names it
    std::string                      snapshotId 1;        ///< the snapshot
};
class ns1__SnapshotPrepareCompleteResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: SnapshotPrepareComplete ""
int __ns1__SnapshotPrepareComplete(ns1__SnapshotPrepareComplete* ns1__SnapshotPrepareComplete_, ns1__SnapshotPrepareCompleteResponse* ns1__SnapshotPrepareCompleteResponse_);

/// Asks whether the service and the array answer. Needs neither credentials nor a token.
class ns1__Ping {
};
class ns1__PingResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: Ping ""
int __ns1__Ping(ns1__Ping* ns1__Ping_, ns1__PingResponse* ns1__PingResponse_);

/// Refused: a cluster's name is the array's to change.
class ns1__RenameHccInSan {
    std::string                      hccId 1;             ///< the cluster
    std::string*                     userToken 0;         ///< the token of the user who renames
    std::string                      sanId 1;             ///< the array
    std::string                      name 1;              ///< the new name
};
class ns1__RenameHccInSanResponse {
    ns1__resultObject*               return_ nullptr 1;
};
//gsoap ns1 service method-action: RenameHccInSan ""
int __ns1__RenameHccInSan(ns1__RenameHccInSan* ns1__RenameHccInSan_, ns1__RenameHccInSanResponse* ns1__RenameHccInSanResponse_);
// clang-format on
