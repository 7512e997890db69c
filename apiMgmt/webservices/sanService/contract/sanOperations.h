// The operations: first those that the service serves, with what each asks and answers; then those
// of the interface family that it does not.
//
// The order of the served ones is that in which the dispatcher compares the tag of the body element
// and in which the virtual slots of the skeleton follow each other. The SOAPAction is not looked at.
//
// How to add one: its request with a /// line that says what it does, its response, and its
// prototype with the (empty) SOAPAction, behind the last one that is served. What follows from it
// is told by docs/addingOperations.md.

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

// A request for one of these ends in the fault for an unknown method. They are declared so that the
// generated code has the shape of the whole family; their members are left out.
//
// How to serve one: move its two classes up, and go on as for a new one.

class ns1__GetVersion {};
class ns1__GetVersionResponse {};
class ns1__GetAuthToken {};
class ns1__GetAuthTokenResponse {};
class ns1__GetSans {};
class ns1__GetSansResponse {};
class ns1__AddSan {};
class ns1__AddSanResponse {};
class ns1__RemoveSan {};
class ns1__RemoveSanResponse {};
class ns1__ReconnectSan {};
class ns1__ReconnectSanResponse {};
class ns1__GetHccInfo {};
class ns1__GetHccInfoResponse {};
class ns1__CreateHcc {};
class ns1__CreateHccResponse {};
class ns1__DeleteHcc {};
class ns1__DeleteHccResponse {};
class ns1__RenameHcc {};
class ns1__RenameHccResponse {};
class ns1__UpdateHccConfig {};
class ns1__UpdateHccConfigResponse {};
class ns1__HccShutdown {};
class ns1__HccShutdownResponse {};
class ns1__HccAttachHcn {};
class ns1__HccAttachHcnResponse {};
class ns1__HccDetachHcn {};
class ns1__HccDetachHcnResponse {};
class ns1__GetHcns {};
class ns1__GetHcnsResponse {};
class ns1__GetHcnDetails {};
class ns1__GetHcnDetailsResponse {};
class ns1__GetDiscoveredHcns {};
class ns1__GetDiscoveredHcnsResponse {};
class ns1__AddHcnToHcc {};
class ns1__AddHcnToHccResponse {};
class ns1__RemoveHcnFromHcc {};
class ns1__RemoveHcnFromHccResponse {};
class ns1__PrepareRemoveHcnFromHcc {};
class ns1__PrepareRemoveHcnFromHccResponse {};
class ns1__GetPrimaryCfmAddresses {};
class ns1__GetPrimaryCfmAddressesResponse {};
class ns1__ModifyCfmMode {};
class ns1__ModifyCfmModeResponse {};
class ns1__GetCacheDevices {};
class ns1__GetCacheDevicesResponse {};
class ns1__GetCacheDeviceStatistics {};
class ns1__GetCacheDeviceStatisticsResponse {};
class ns1__AddCacheDevice {};
class ns1__AddCacheDeviceResponse {};
class ns1__RemoveCacheDevice {};
class ns1__RemoveCacheDeviceResponse {};
class ns1__PrepareRemoveCacheDevice {};
class ns1__PrepareRemoveCacheDeviceResponse {};
class ns1__ReactivateCacheDevice {};
class ns1__ReactivateCacheDeviceResponse {};
class ns1__GetHcVolumes {};
class ns1__GetHcVolumesResponse {};
class ns1__GetHcVolumeStatistics {};
class ns1__GetHcVolumeStatisticsResponse {};
class ns1__CreateHcVolume {};
class ns1__CreateHcVolumeResponse {};
class ns1__DeleteHcVolume {};
class ns1__DeleteHcVolumeResponse {};
class ns1__PrepareDeleteHcVolume {};
class ns1__PrepareDeleteHcVolumeResponse {};
class ns1__RenameHcVolume {};
class ns1__RenameHcVolumeResponse {};
class ns1__ResizeHcVolume {};
class ns1__ResizeHcVolumeResponse {};
class ns1__ReactivateHcVolume {};
class ns1__ReactivateHcVolumeResponse {};
class ns1__MapHcVolume {};
class ns1__MapHcVolumeResponse {};
class ns1__UnmapHcVolume {};
class ns1__UnmapHcVolumeResponse {};
class ns1__ModifyCacheMode {};
class ns1__ModifyCacheModeResponse {};
class ns1__ThinProvisioningUpdate {};
class ns1__ThinProvisioningUpdateResponse {};
class ns1__SnapshotPrepare {};
class ns1__SnapshotPrepareResponse {};
class ns1__SnapshotFreeze {};
class ns1__SnapshotFreezeResponse {};
class ns1__SnapshotFlush {};
class ns1__SnapshotFlushResponse {};
class ns1__SnapshotCancel {};
class ns1__SnapshotCancelResponse {};
class ns1__SnapshotUnprepare {};
class ns1__SnapshotUnprepareResponse {};
class ns1__HccMaintenanceModePrepare {};
class ns1__HccMaintenanceModePrepareResponse {};
class ns1__HccMaintenanceModeCancel {};
class ns1__HccMaintenanceModeCancelResponse {};
class ns1__HccUpdatePrepare {};
class ns1__HccUpdatePrepareResponse {};
class ns1__HccUpdateCancel {};
class ns1__HccUpdateCancelResponse {};
class ns1__SoftwareUpdatePackage {};
class ns1__SoftwareUpdatePackageResponse {};
class ns1__GetEvents {};
class ns1__GetEventsResponse {};
class ns1__GetEventInformation {};
class ns1__GetEventInformationResponse {};
class ns1__GetEventHandlers {};
class ns1__GetEventHandlersResponse {};
class ns1__RegisterEventHandler {};
class ns1__RegisterEventHandlerResponse {};
class ns1__RemoveEventHandler {};
class ns1__RemoveEventHandlerResponse {};
class ns1__ReceiveEvent {};
class ns1__ReceiveEventResponse {};
class ns1__CreateTestEvent {};
class ns1__CreateTestEventResponse {};
class ns1__GetPhoneHomeData {};
class ns1__GetPhoneHomeDataResponse {
    ns1__dataAttachment* return_ nullptr 1;
};
class ns1__GetPhoneHomeStatus {};
class ns1__GetPhoneHomeStatusResponse {};
class ns1__CreatePhoneHomeData {};
class ns1__CreatePhoneHomeDataResponse {};
class ns1__DeletePhoneHomeData {};
class ns1__DeletePhoneHomeDataResponse {};
// clang-format on
