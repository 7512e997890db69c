#pragma once

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnAdvancedMapping.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/frontEndTransportTypeEnum.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/serverEnums.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiAssociation.h"
#include "apiMgmt/apiStub/base/apiObjects/base/getListApiMethod.h"
#include "apiMgmt/apiStub/base/apiObjects/base/tarnStatusBaseApiObject.h"
#include "apiMgmt/apiStub/base/filters/apiHistoricalFilter.h"

/// A host that the array knows.
///
/// Every method but Get and GetList acts on the server whose instance id it is given:
///
///     APITarnServer::APITarnServerMapToVolumeMethod method;
///     method.PutStringDirect("InstanceId", "101.5");
///     method.SetVolume(APIObjectInstance("101.9", "TarnVolume", "Data"));
class APITarnServer : public TARNStatusBaseApiObject {
    API_OBJECT(TarnServer);
    // clang-format off
    //            XML name                    display name                     kind                                 code bounds
    API_ATTRIBUTE(AlertOnConnectivity,        "Alert On Lost Connectivity",    BOOLEAN,                             20);
    API_ATTRIBUTE(AlertOnPartialConnectivity, "Alert On Partial Connectivity", BOOLEAN,                             26);
    API_ATTRIBUTE(ConnectedToAllControllers,  "Connected to All Controllers",  BOOLEAN,                             25);
    API_ATTRIBUTE(Connectivity,               "Connectivity",                  ENUM<ServerConnectivityEnum>,        15);
    API_ATTRIBUTE(DeleteAllowed,              "Delete Allowed",                BOOLEAN,                             20);
    API_ATTRIBUTE(HbaCount,                   "HBA Count",                     INT,                                 14,  AtLeast(0));
    API_ATTRIBUTE(HbaPresent,                 "HBA Present",                   BOOLEAN,                             20);
    API_ATTRIBUTE(HostCache,                  "Host Cache",                    OBJECT,                              20);
    API_ATTRIBUTE(HostCacheIndex,             "Host Cache Index",              INT,                                 20,  AtLeast(0));
    API_ATTRIBUTE(Index,                      "Index",                         INT,                                  7,  AtLeast(0));
    API_ATTRIBUTE(ManagementApplication,      "Management Application",        STRING,                              21,  Between(0, 128));
    API_ATTRIBUTE(Mapped,                     "Mapped",                        BOOLEAN,                             20);
    API_ATTRIBUTE(MaximumPathCount,           "Maximum Path Count",            INT,                                 20,  NoBounds);
    API_ATTRIBUTE(Name,                       "Name",                          STRING,                              20,  Between(1, 96).Forbidding("<>&"));
    API_ATTRIBUTE(NextAvailableLun,           "Next Available LUN",            INT,                                 20,  NoBounds);
    API_ATTRIBUTE(Notes,                      "Notes",                         STRING,                              20,  Between(0, 768).Forbidding("<>&"));
    API_ATTRIBUTE(OperatingSystem,            "Operating System",              OBJECT,                              20);
    API_ATTRIBUTE(OperatingSystemIndex,       "Operating System Index",        INT,                                 20,  NoBounds);
    API_ATTRIBUTE(Parent,                     "Parent",                        OBJECT,                              20);
    API_ATTRIBUTE(ParentIndex,                "Parent Index",                  INT,                                 20,  NoBounds);
    API_ATTRIBUTE(PathCount,                  "Path Count",                    INT,                                 20,  AtLeast(0));
    API_ATTRIBUTE(PortType,                   "Port Type",                     ENUMMASK<FrontEndTransportTypeEnum>, 20);
    API_ATTRIBUTE(RemoveHbasAllowed,          "RemoveHbasAllowed",             BOOLEAN,                             20);  // no blanks: operators know it so
    API_ATTRIBUTE(ServerFolder,               "Server Folder",                 OBJECT,                              20);
    API_ATTRIBUTE(ServerFolderIndex,          "Server Folder Index",           INT,                                 17,  AtLeast(0));
    API_ATTRIBUTE(ServerFolderPath,           "Server Folder Path",            STRING,                              20,  NoBounds);
    API_ATTRIBUTE(Type,                       "Type",                          ENUM<ServerTypeEnum>,                25);
    API_ATTRIBUTE(VolumeCount,                "Volume Count",                  INT,                                 20,  NoBounds);
    // clang-format on
    API_ATTRIBUTE_LIST_THEN(TARNStatusBaseApiObject, AlertOnConnectivity,
                            AlertOnPartialConnectivity, ConnectedToAllControllers, Connectivity,
                            DeleteAllowed, HbaCount, HbaPresent, HostCache, HostCacheIndex, Index,
                            ManagementApplication, Mapped, MaximumPathCount, Name, NextAvailableLun,
                            Notes, OperatingSystem, OperatingSystemIndex, Parent, ParentIndex,
                            PathCount, PortType, RemoveHbasAllowed, ServerFolder, ServerFolderIndex,
                            ServerFolderPath, Type, VolumeCount);

    class APITarnServerGetMethod;
    class APITarnServerGetListMethod;
    class APITarnServerDeleteMethod;
    class APITarnServerMapToVolumeMethod;
    class APITarnServerGetHistoricalStorageUsageMethod;
    class APITarnServerGetHistoricalIoUsageMethod;
    class APITarnServerAddManagementLockMethod;
    class APITarnServerRemoveManagementLockMethod;

    class APITarnServerHostCacheAssociation;
    class APITarnServerStorageUsageAssociation;
    class APITarnServerTarnAssociation;
    class APITarnServerSaServerListAssociation;
    class APITarnServerPathListAssociation;
    class APITarnServerMappingProfileListAssociation;
    class APITarnServerMappingListAssociation;
    class APITarnServerHbaListAssociation;
};

// To add a method: name it in the class above, state it here, register it in the source file.
// clang-format off
class APITarnServer::APITarnServerGetMethod : public BASEApiMethod {
    API_METHOD(TarnServer, Get, false, Reporter);
    API_ATTRIBUTE(InstanceId, "Instance ID", INSTANCEID, 25);
    API_ATTRIBUTE_LIST(InstanceId);
    API_REQUIRED(InstanceId);
};

class APITarnServer::APITarnServerGetListMethod : public GETLISTApiMethod {
    API_GETLIST_METHOD(TarnServer, false, Reporter);
    API_ATTRIBUTE_OVERRIDE(Filter, "Filter", GETLISTFILTER, 25);
    API_ATTRIBUTE_LIST(Filter);
    API_REQUIRED(Filter);
};

class APITarnServer::APITarnServerDeleteMethod : public BASEApiMethod {
    API_METHOD(TarnServer, Delete, true, Admin);
    API_ATTRIBUTE(ManagementApplication, "Management Application", STRING, 21, Between(0, 128));
    API_ATTRIBUTE_LIST(ManagementApplication);
    API_REQUIRED(InstanceId);
};

class APITarnServer::APITarnServerMapToVolumeMethod : public BASEApiMethod {
    API_METHOD(TarnServer, MapToVolume, true, VolumeManager);
    API_ATTRIBUTE(Advanced,              "Advanced",               METHODOBJECT<APITarnAdvancedMapping>, 20);
    API_ATTRIBUTE(ManagementApplication, "Management Application", STRING,                               21, Between(0, 128));
    API_ATTRIBUTE(Volume,                "Volume",                 OBJECT,                               20);
    API_ATTRIBUTE_LIST(Advanced, ManagementApplication, Volume);
    API_REQUIRED(InstanceId, Volume);
};

class APITarnServer::APITarnServerGetHistoricalStorageUsageMethod : public BASEApiMethod {
    API_METHOD(TarnServer, GetHistoricalStorageUsage, false, Reporter);
    API_ATTRIBUTE(HistoricalFilter, "Historical Filter", METHODOBJECT<APIHistoricalFilter>, 25);
    API_ATTRIBUTE_LIST(HistoricalFilter);
    API_REQUIRED(InstanceId, HistoricalFilter);
};

class APITarnServer::APITarnServerGetHistoricalIoUsageMethod : public BASEApiMethod {
    API_METHOD(TarnServer, GetHistoricalIoUsage, false, Reporter);
    API_ATTRIBUTE(HistoricalFilter, "Historical Filter", METHODOBJECT<APIHistoricalFilter>, 25);
    API_ATTRIBUTE_LIST(HistoricalFilter);
    API_REQUIRED(InstanceId, HistoricalFilter);
};

class APITarnServer::APITarnServerAddManagementLockMethod : public BASEApiMethod {
    API_METHOD(TarnServer, AddManagementLock, true, Reporter);
    API_ATTRIBUTE(ManagementApplication, "Management Application", STRING, 21, Between(0, 128));
    API_ATTRIBUTE_LIST(ManagementApplication);
    API_REQUIRED(InstanceId, ManagementApplication);
};

class APITarnServer::APITarnServerRemoveManagementLockMethod : public BASEApiMethod {
    API_METHOD(TarnServer, RemoveManagementLock, true, Reporter);
    API_ATTRIBUTE(ManagementApplication, "Management Application", STRING, 21, Between(0, 128));
    API_ATTRIBUTE_LIST(ManagementApplication);
    API_REQUIRED(InstanceId, ManagementApplication);
};

class APITarnServer::APITarnServerHostCacheAssociation          : public BASEApiAssociation { API_ASSOCIATION(TarnServer, HostCache); };
class APITarnServer::APITarnServerStorageUsageAssociation       : public BASEApiAssociation { API_ASSOCIATION(TarnServer, StorageUsage); };
class APITarnServer::APITarnServerTarnAssociation               : public BASEApiAssociation { API_ASSOCIATION(TarnServer, Tarn); };
class APITarnServer::APITarnServerSaServerListAssociation       : public BASEApiAssociation { API_ASSOCIATION(TarnServer, SaServerList); };
class APITarnServer::APITarnServerPathListAssociation           : public BASEApiAssociation { API_ASSOCIATION(TarnServer, PathList); };
class APITarnServer::APITarnServerMappingProfileListAssociation : public BASEApiAssociation { API_ASSOCIATION(TarnServer, MappingProfileList); };
class APITarnServer::APITarnServerMappingListAssociation        : public BASEApiAssociation { API_ASSOCIATION(TarnServer, MappingList); };
class APITarnServer::APITarnServerHbaListAssociation            : public BASEApiAssociation { API_ASSOCIATION(TarnServer, HbaList); };
// clang-format on
