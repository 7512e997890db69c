#pragma once

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/frontEndTransportTypeEnum.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/hostCacheEnums.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/mappingEnums.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"

/// The optional settings of a volume's mapping to a server.
class APITarnAdvancedMapping : public BASEApiMethodObject {
    API_METHOD_OBJECT(TarnAdvancedMapping);
    // clang-format off
    //            XML name                     display name                       kind                                 code bounds
    API_ATTRIBUTE(BootVolume,                  "Boot Volume",                     BOOLEAN,                             20);
    API_ATTRIBUTE(HostCacheDataPolicy,         "Host Cache Data Policy",          ENUM<HostCacheDataPolicyEnum>,       20);
    API_ATTRIBUTE(HostCachePolicy,             "Host Cache Policy",               ENUM<HostCachePolicyEnum>,           20);
    API_ATTRIBUTE(MapToDownServerHbas,         "Map To Down Server Hbas",         BOOLEAN,                             20);
    API_ATTRIBUTE(MaximumPathCount,            "Maximum Path Count",              INT,                                 20,  AtLeast(0));
    API_ATTRIBUTE(NoPreferredUseNextAvailable, "No Preferred Use Next Available", BOOLEAN,                             27);
    API_ATTRIBUTE(PreferredController,         "Preferred Controller",            OBJECT,                              20);
    API_ATTRIBUTE(PreferredLun,                "Preferred Lun",                   INT,                                 20,  Between(1, 4095));
    API_ATTRIBUTE(PreferredServerHbaList,      "Preferred Server Hba List",       OBJECTARRAY,                         22);
    API_ATTRIBUTE(PreferredTransportTypes,     "Preferred Transport Types",       ENUMMASK<FrontEndTransportTypeEnum>, 23);
    API_ATTRIBUTE(ReadOnly,                    "Read Only",                       BOOLEAN,                             20);
    API_ATTRIBUTE(UseNextAvailable,            "Use Next Available",              BOOLEAN,                             20);
    API_ATTRIBUTE(UseSameLunAsSource,          "Use Same Lun As Source",          BOOLEAN,                             20);
    API_ATTRIBUTE(VirtualServerMapping,        "Virtual Server Mapping",          ENUM<VirtualServerMappingEnum>,      20);
    // clang-format on
    API_ATTRIBUTE_LIST(BootVolume, HostCacheDataPolicy, HostCachePolicy, MapToDownServerHbas,
                       MaximumPathCount, NoPreferredUseNextAvailable, PreferredController,
                       PreferredLun, PreferredServerHbaList, PreferredTransportTypes, ReadOnly,
                       UseNextAvailable, UseSameLunAsSource, VirtualServerMapping);
};
