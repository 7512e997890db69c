#pragma once

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiIpv4AddressPort.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneInterfaceInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnServer.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/hostCacheEnums.h"

/// A member of a host-cache cluster as the array sees it: a server with a cache. Its methods are
/// what a cluster asks of the array and tells it.
///
///     APITarnHostCache::APITarnHostCacheHccAttachVolumeMethod method;
///     method.SetHccId("7");
///     method.SetVolumeId("31.2");
///     method.ValidateRequiredAttributes();
///     std::unique_ptr<BASEApiMethodReturn> answer(method.Execute(&header, nullptr));
class APITarnHostCache : public APITarnServer {
    API_OBJECT(TarnHostCache);
    // clang-format off
    //            XML name                     display name                      kind                                   code bounds
    API_ATTRIBUTE(HostCacheConnectivityStatus, "Host Cache Connectivity Status", ENUM<HostCacheConnectivityStatusEnum>, 27);
    API_ATTRIBUTE(HostCacheId,                 "Host Cache ID",                  STRING,                                20,  AtLeast(1));
    API_ATTRIBUTE(Managed,                     "Managed",                        BOOLEAN,                               20);
    API_ATTRIBUTE(ManagementIpAddress,         "Management IP Address",          STRING,                                20,  AtLeast(1));
    API_ATTRIBUTE(ManagementPort,              "Management Port",                INT,                                   20,  AtLeast(1));
    // clang-format on
    API_ATTRIBUTE_LIST_THEN(APITarnServer, HostCacheConnectivityStatus, HostCacheId, Managed,
                            ManagementIpAddress, ManagementPort);

    class APITarnHostCacheGetMethod;
    class APITarnHostCacheGetListMethod;
    class APITarnHostCacheAddHccToSanMethod;
    class APITarnHostCacheRemoveHccFromSanMethod;
    class APITarnHostCacheAddServerMethod;
    class APITarnHostCacheRemoveServerMethod;
    class APITarnHostCacheHccAttachVolumeMethod;
    class APITarnHostCacheHccDetachVolumeMethod;
    class APITarnHostCacheMakeDataAvailableMethod;
    class APITarnHostCacheMakeDataUnavailableMethod;
    class APITarnHostCacheFlushCompleteMethod;
    class APITarnHostCacheSnapshotPrepareCompleteMethod;
    class APITarnHostCacheNewPrimaryCfmAddressMethod;
    class APITarnHostCacheRenameHccInSanMethod;
    class APITarnHostCacheCreateServerClusterMethod;
    class APITarnHostCachePingMethod;
    class APITarnHostCacheDeleteMethod;

    class APITarnHostCacheServerListAssociation;
};

// To add a method: name it in the class above, state it here, register it in the source file.
// The display name and the bounds of an attribute differ from method to method; the messages of a
// failed validation quote them, so each stays as it is.
// clang-format off
class APITarnHostCache::APITarnHostCacheGetMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, Get, false, Reporter);
    API_ATTRIBUTE(InstanceId, "Instance Id", INSTANCEID, 25);
    API_ATTRIBUTE_LIST(InstanceId);
    API_REQUIRED(InstanceId);
};

class APITarnHostCache::APITarnHostCacheGetListMethod : public GETLISTApiMethod {
    API_GETLIST_METHOD(TarnHostCache, false, Reporter);
    API_ATTRIBUTE_OVERRIDE(Filter, "Filter", GETLISTFILTER, 25);
    API_ATTRIBUTE_LIST(Filter);
    API_REQUIRED(Filter);
};

class APITarnHostCache::APITarnHostCacheAddHccToSanMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, AddHccToSan, true, Admin);
    API_ATTRIBUTE(HccId,               "Norvane Cluster Id",     STRING,                                20, NoBounds);
    API_ATTRIBUTE(HccKey,              "Norvane Cluster Key",    STRING,                                20, AtLeast(1));
    API_ATTRIBUTE(HccName,             "Norvane Cluster Name",   STRING,                                20, AtLeast(1));
    API_ATTRIBUTE(Ipv4AddressPortList, "IPv4 Address Port List", METHODOBJECTARRAY<APIIpv4AddressPort>, 20);
    API_ATTRIBUTE_LIST(HccId, HccKey, HccName, Ipv4AddressPortList);
    API_REQUIRED(HccId, HccKey, HccName, Ipv4AddressPortList);
};

class APITarnHostCache::APITarnHostCacheRemoveHccFromSanMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, RemoveHccFromSan, true, Admin);
    API_ATTRIBUTE(HccId, "Norvane Cluster Id", STRING, 20, NoBounds);
    API_ATTRIBUTE(SanId, "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE_LIST(HccId, SanId);
    API_REQUIRED(HccId);
};

class APITarnHostCache::APITarnHostCacheAddServerMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, AddServer, true, Admin);
    API_ATTRIBUTE(HccId,                   "Norvane Cluster Id",            STRING,                                            20, NoBounds);
    API_ATTRIBUTE(HcnId,                   "Norvane Server Id",             STRING,                                            20, NoBounds);
    API_ATTRIBUTE(HcnStorageInterfaceList, "Norvane Server Interface List", METHODOBJECTARRAY<APINorvaneInterfaceInformation>, 29);
    API_ATTRIBUTE(Hostname,                "Hostname",                      STRING,                                            20, AtLeast(1));
    API_ATTRIBUTE(Ipv4AddressPortList,     "IPv4 Address Port List",        METHODOBJECTARRAY<APIIpv4AddressPort>,             20);
    API_ATTRIBUTE(OsType,                  "OS Type",                       STRING,                                            20, NoBounds);
    API_ATTRIBUTE(OsVersion,               "Operating System Version",      STRING,                                            20, NoBounds);
    API_ATTRIBUTE(SanId,                   "Tarn Serial Number",            STRING,                                            20, AtLeast(1));
    API_ATTRIBUTE_LIST(HccId, HcnId, HcnStorageInterfaceList, Hostname, Ipv4AddressPortList, OsType, OsVersion, SanId);
    API_REQUIRED(HccId, HcnId, HcnStorageInterfaceList, Hostname, Ipv4AddressPortList);
};

class APITarnHostCache::APITarnHostCacheRemoveServerMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, RemoveServer, true, Admin);
    API_ATTRIBUTE(HccId, "Norvane Cluster ID", STRING, 20, NoBounds);
    API_ATTRIBUTE(HcnId, "Norvane Server ID",  STRING, 20, NoBounds);
    API_ATTRIBUTE(SanId, "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE_LIST(HccId, HcnId, SanId);
    API_REQUIRED(HccId, HcnId);
};

class APITarnHostCache::APITarnHostCacheHccAttachVolumeMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, HccAttachVolume, true, VolumeManager);
    API_ATTRIBUTE(HccId,    "Norvane Cluster Id", STRING, 20, NoBounds);
    API_ATTRIBUTE(SanId,    "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(VolumeId, "Volume Id",          STRING, 20, NoBounds);
    API_ATTRIBUTE_LIST(HccId, SanId, VolumeId);
    API_REQUIRED(HccId, VolumeId);
};

class APITarnHostCache::APITarnHostCacheHccDetachVolumeMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, HccDetachVolume, true, VolumeManager);
    API_ATTRIBUTE(HccId,    "Norvane Cluster Id", STRING, 20, NoBounds);
    API_ATTRIBUTE(SanId,    "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(VolumeId, "Volume Id",          STRING, 20, NoBounds);
    API_ATTRIBUTE_LIST(HccId, SanId, VolumeId);
    API_REQUIRED(HccId, VolumeId);
};

class APITarnHostCache::APITarnHostCacheMakeDataAvailableMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, MakeDataAvailable, true, Admin);
    API_ATTRIBUTE(HccId,    "Norvane Cluster Id", STRING, 20, NoBounds);
    API_ATTRIBUTE(HcnId,    "Norvane Server Id",  STRING, 20, NoBounds);
    API_ATTRIBUTE(SanId,    "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(VolumeId, "Volume Id",          STRING, 20, NoBounds);
    API_ATTRIBUTE_LIST(HccId, HcnId, SanId, VolumeId);
    API_REQUIRED(HccId, HcnId, VolumeId);
};

class APITarnHostCache::APITarnHostCacheMakeDataUnavailableMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, MakeDataUnavailable, true, Admin);
    API_ATTRIBUTE(HccId,    "Norvane Cluster ID", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(HcnId,    "Norvane Server ID",  STRING, 20, AtLeast(1));
    API_ATTRIBUTE(SanId,    "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(VolumeId, "Volume Id",          STRING, 20, AtLeast(1));
    API_ATTRIBUTE_LIST(HccId, HcnId, SanId, VolumeId);
    API_REQUIRED(HccId, HcnId, VolumeId);
};

class APITarnHostCache::APITarnHostCacheFlushCompleteMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, FlushComplete, true, Admin);
    API_ATTRIBUTE(HccId,      "Norvane Cluster Id", STRING, 20, NoBounds);
    API_ATTRIBUTE(SanId,      "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(SanOpaque,  "San Opaque",         STRING, 20, AtLeast(1));
    API_ATTRIBUTE(SnapshotId, "Snapshot Id",        STRING, 20, NoBounds);
    API_ATTRIBUTE(VolumeId,   "Volume Id",          STRING, 20, NoBounds);
    API_ATTRIBUTE_LIST(HccId, SanId, SanOpaque, SnapshotId, VolumeId);
    API_REQUIRED(HccId, SanOpaque, SnapshotId, VolumeId);
};

class APITarnHostCache::APITarnHostCacheSnapshotPrepareCompleteMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, SnapshotPrepareComplete, true, Admin);
    API_ATTRIBUTE(HccId,      "Norvane Cluster ID", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(SanId,      "San Id",             STRING, 20, AtLeast(1));
    API_ATTRIBUTE(SnapshotId, "Snapshot Id",        STRING, 20, AtLeast(1));
    API_ATTRIBUTE(VolumeId,   "Volume Id",          STRING, 20, AtLeast(1));
    API_ATTRIBUTE_LIST(HccId, SanId, SnapshotId, VolumeId);
    API_REQUIRED(HccId, SnapshotId, VolumeId);
};

// The addresses must be set, but the array does not want them in the request.
class APITarnHostCache::APITarnHostCacheNewPrimaryCfmAddressMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, NewPrimaryCfmAddress, true, Admin);
    API_ATTRIBUTE(HccId,                   "Norvane Cluster Id",         STRING,                                20, NoBounds);
    API_ATTRIBUTE(ManagementIpAddressList, "Management IP Address List", METHODOBJECTARRAY<APIIpv4AddressPort>, 23);
    API_ATTRIBUTE_LIST(HccId);
    API_UNWRITTEN(ManagementIpAddressList);
    API_REQUIRED(HccId, ManagementIpAddressList);
};

class APITarnHostCache::APITarnHostCacheRenameHccInSanMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, RenameHccInSan, true, Admin);
    API_ATTRIBUTE(HccId, "Norvane Cluster ID", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(Name,  "Name",               STRING, 20, AtLeast(1));
    API_ATTRIBUTE(SanId, "Tarn Serial Number", STRING, 20, AtLeast(1));
    API_ATTRIBUTE(User,  "User",               STRING, 20, AtLeast(1));
    API_ATTRIBUTE_LIST(HccId, Name, SanId, User);
    API_REQUIRED(HccId, Name);
};

// The flag can be set, but the array does not want it in the request. The instance id is required
// without being an attribute of the method: PutStringDirect sets it.
class APITarnHostCache::APITarnHostCacheCreateServerClusterMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, CreateServerCluster, true, Admin);
    API_ATTRIBUTE(AlertOnConnectivity, "Alert On Connectivity", BOOLEAN,     20);
    API_ATTRIBUTE(Name,                "Name",                  STRING,      20, AtLeast(1));
    API_ATTRIBUTE(Notes,               "Notes",                 STRING,      20, NoBounds);
    API_ATTRIBUTE(ServerList,          "Server List",           OBJECTARRAY, 20);  // references to servers
    API_ATTRIBUTE_LIST(Name, Notes, ServerList);
    API_UNWRITTEN(AlertOnConnectivity);
    API_REQUIRED(InstanceId, Name, ServerList);
};

class APITarnHostCache::APITarnHostCachePingMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, Ping, true, Reporter);
};

class APITarnHostCache::APITarnHostCacheDeleteMethod : public BASEApiMethod {
    API_METHOD(TarnHostCache, Delete, true, Admin);
};

/// From a host cache to its servers.
class APITarnHostCache::APITarnHostCacheServerListAssociation : public BASEApiAssociation { API_ASSOCIATION(TarnHostCache, ServerList); };
// clang-format on
