// The operations of the skeleton, in the order in which the dispatcher compares the tag of the body
// element and in which the virtual slots follow each other. The SOAPAction is not looked at.
//
// How to add one: its messages in sanServed.h, its prototype at the end here.

// clang-format off
//gsoap ns1 service method-action: AddHccToSan ""
int __ns1__AddHccToSan(ns1__AddHccToSan* ns1__AddHccToSan_, ns1__AddHccToSanResponse* ns1__AddHccToSanResponse_);

//gsoap ns1 service method-action: RemoveHccFromSan ""
int __ns1__RemoveHccFromSan(ns1__RemoveHccFromSan* ns1__RemoveHccFromSan_, ns1__RemoveHccFromSanResponse* ns1__RemoveHccFromSanResponse_);

//gsoap ns1 service method-action: AddServer ""
int __ns1__AddServer(ns1__AddServer* ns1__AddServer_, ns1__AddServerResponse* ns1__AddServerResponse_);

//gsoap ns1 service method-action: RemoveServer ""
int __ns1__RemoveServer(ns1__RemoveServer* ns1__RemoveServer_, ns1__RemoveServerResponse* ns1__RemoveServerResponse_);

//gsoap ns1 service method-action: HccAttachVolume ""
int __ns1__HccAttachVolume(ns1__HccAttachVolume* ns1__HccAttachVolume_, ns1__HccAttachVolumeResponse* ns1__HccAttachVolumeResponse_);

//gsoap ns1 service method-action: HccDetachVolume ""
int __ns1__HccDetachVolume(ns1__HccDetachVolume* ns1__HccDetachVolume_, ns1__HccDetachVolumeResponse* ns1__HccDetachVolumeResponse_);

//gsoap ns1 service method-action: MakeDataAvailable ""
int __ns1__MakeDataAvailable(ns1__MakeDataAvailable* ns1__MakeDataAvailable_, ns1__MakeDataAvailableResponse* ns1__MakeDataAvailableResponse_);

//gsoap ns1 service method-action: MakeDataUnavailable ""
int __ns1__MakeDataUnavailable(ns1__MakeDataUnavailable* ns1__MakeDataUnavailable_, ns1__MakeDataUnavailableResponse* ns1__MakeDataUnavailableResponse_);

//gsoap ns1 service method-action: FlushComplete ""
int __ns1__FlushComplete(ns1__FlushComplete* ns1__FlushComplete_, ns1__FlushCompleteResponse* ns1__FlushCompleteResponse_);

//gsoap ns1 service method-action: NewPrimaryCfmAddresses ""
int __ns1__NewPrimaryCfmAddresses(ns1__NewPrimaryCfmAddresses* ns1__NewPrimaryCfmAddresses_, ns1__NewPrimaryCfmAddressesResponse* ns1__NewPrimaryCfmAddressesResponse_);

//gsoap ns1 service method-action: SnapshotPrepareComplete ""
int __ns1__SnapshotPrepareComplete(ns1__SnapshotPrepareComplete* ns1__SnapshotPrepareComplete_, ns1__SnapshotPrepareCompleteResponse* ns1__SnapshotPrepareCompleteResponse_);

//gsoap ns1 service method-action: Ping ""
int __ns1__Ping(ns1__Ping* ns1__Ping_, ns1__PingResponse* ns1__PingResponse_);

//gsoap ns1 service method-action: RenameHccInSan ""
int __ns1__RenameHccInSan(ns1__RenameHccInSan* ns1__RenameHccInSan_, ns1__RenameHccInSanResponse* ns1__RenameHccInSanResponse_);
// clang-format on
