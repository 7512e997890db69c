// Data objects that belong to the interface family and that no served message carries. Status
// members are texts on purpose, also where an enumeration holds their values.
//
// How to add one: as in sanTypes.h.

// clang-format off
class ns1__NetworkInterfaceObject {
    std::string interfaceName 1;
    std::string linkState 1;
    std::string linkSpeed 1;
    int         averageLatency 1;
    ULONG64     receiveBytes 1;
    ULONG64     receivePackets 1;
    ULONG64     receiveErrors 1;
    ULONG64     transmitBytes 1;
    ULONG64     transmitPackets 1;
    ULONG64     transmitErrors 1;
};

class ns1__systemInfoObject {
    ULONG64 totalRAM 1;
    ULONG64 freeRAM 1;
    ULONG64 sharedRAM 1;
    ULONG64 bufferRAM 1;
    ULONG64 totalswap 1;
    ULONG64 freeswap 1;
    ULONG64 currentProcesses 1;
    ULONG64 uptime 1;
    ULONG64 loadAvg1 1;
    ULONG64 loadAvg5 1;
    ULONG64 loadAvg15 1;
    ULONG64 norvaneProcessesTotalRAM 1;
};

class ns1__networkObject {
    std::string          netName 1;
    ns1__InetAddressIPv4 address 1;
    ns1__InetAddressIPv4 mask 1;
    unsigned int         rank 1;
};

class ns1__hcnObject {
    std::vector<std::string>             cacheDeviceIds 0;
    std::vector<ns1__InetAddress*>       cacheNetworkInterfaces 0;
    std::string*                         cfmStatus 0;
    std::vector<std::string>             hcVolumeIds 0;
    ns1__hcnDiscoverableObject*          hcnInfo nullptr 1;
    std::string                          hcnStatus 1;
    int*                                 hcnStatusEventId 0;
    std::vector<ns1__interfaceObject*>   sanInterfaces 0;
    int*                                 percentRemovalComplete 0;
    bool*                                softwareUpdatePending 0;
};

class ns1__hcnDetailObject {
    ns1__systemInfoObject*       systemInfo 0;
    ns1__NetworkInterfaceObject* networkInfo 0;
};

class ns1__sanObject {
    std::vector<ns1__IpAddressPort*> ipAddresses 0;
    std::string                      sanId 1;
    std::string*                     sanName 0;
    std::string                      sanStatus 1;
    std::string*                     sanType 0;
    std::vector<std::string>         hcVolumeIds 0;
};

class ns1__hccObject {
    std::vector<std::string>         cdIds 0;
    std::string                      hccId 1;
    std::vector<std::string>         hcnIds 0;
    bool                             highAvailability 1;
    std::string*                     name 0;
    std::vector<std::string>         sanIds 0;
    ULONG64                          totalSizeInBytes 1;
    std::vector<ns1__IpAddressPort*> mgmtIpAddresses 0;
    std::string                      status 1;
    int*                             hccStatusEventId 0;
    bool                             maintenanceMode 1;
    bool                             cachePoolResilvering 1;
    bool                             shutdownPending 1;
};

class ns1__hcVolumeObject {
    std::string              cacheMode 1;
    std::string              configCacheMode 1;
    std::string              cachePolicy 1;
    std::string              createDate 1;
    std::string              hccId 1;
    std::vector<std::string> hcnIds 0;
    ns1__scsiInfo*           origScsiInfo nullptr 1;
    std::string              sanId 1;
    ns1__scsiInfo*           aliasScsiInfo nullptr 1;
    std::string              sanVolumeId 1;
    std::string*             scsiId 0;
    ULONG64                  sizeInBytes 1;
    std::string              hcVolumeId 1;
    std::string*             hcVolumeName 0;
    bool                     isFlushing 1;
    std::string              status 1;
    int*                     statusEventId 0;
};

class ns1__hcVolumeStatisticsObject {
    std::string hccId 1;
    std::string hcVolumeId 1;
    ULONG64     TotalSizeInBytes 1;
    ULONG64     NumReads 1;
    ULONG64     NumWrites 1;
    ULONG64     NumCacheBytesRead 1;
    ULONG64     NumCacheBytesWritten 1;
    ULONG64     AmountofTimeForReads 1;
    ULONG64     AmountofTimeForWrites 1;
    ULONG64     ReadHits 1;
    ULONG64     WriteHits 1;
    ULONG64     BytesUsedByCache 1;
    ULONG64     NumDirtyBytes 1;
    ULONG64     CacheInserts 1;
    ULONG64     CacheEvicts 1;
    ULONG64     NumDiskBytesRead 1;
    ULONG64     NumDiskBytesWritten 1;
    ULONG64     NumDiskReads 1;
    ULONG64     NumDiskWrites 1;
    ULONG64     NumReplicaBytes 1;
    ULONG64     NumEvictedBytes 1;
    ULONG64     AverageCacheBlockEvictAge 1;
    int         PercentOfCachePool 1;
};

class ns1__cacheDeviceObject {
    ULONG64      bytesUsed 1;
    std::string  cdId 1;
    std::string  cdStatus 1;
    int*         cdStatusEventId 0;
    std::string* deviceType 0;
    std::string  hccId 1;
    std::string  hcnId 1;
    std::string* memoryType 0;
    std::string  pathname 1;
    ULONG64      sizeInBytes 1;
    int          deviceLifeRemaining 1;
    int          writeProtectProgress 1;
    std::string  deviceDriver 1;
    std::string  firmwareVersion 1;
    int*         percentRemovalComplete 0;
};

class ns1__cacheDeviceStatisticsObject {
    std::string cdId 1;
    std::string hccId 1;
    ULONG64     NumReads 1;
    ULONG64     NumWrites 1;
    ULONG64     NumCacheBytesRead 1;
    ULONG64     NumCacheBytesWritten 1;
    ULONG64     NumCacheBytesFlushing 1;
    ULONG64     NumDirtyBytes 1;
    ULONG64     NumReplicaBytes 1;
};

class ns1__hcnArgumentObject {
    std::string hcnId 1;
    bool        cfmEligible 1;
};

class ns1__eventArg {
    enum ns1__eventArgType argType 1;
    std::string*           argText 0;
};

class ns1__eventObject {
    std::string                 hccId 1;
    int                         catalogNumber 1;
    std::vector<ns1__eventArg*> eventArgs 0;
    int                         eventId 1;
    ULONG64                     eventSequence 1;
    std::string*                eventText 0;
    enum ns1__eventSeverity     severity 1;
    time_t                      time 1;
};

class ns1__eventInformationObject {
    int         eventsAvailable 1;
    std::string hccId 1;
    ULONG64     lastEventSequenceNumber 1;
    time_t      timeLastEvent 1;
};

class ns1__phoneHomeObject {
    std::string hccId 1;
    std::string phoneHomeId 1;
    LONG64      sizeOfData 1;
    std::string status 1;
    time_t      timeInitiated 1;
};

class ns1__hccConfigArg {
    std::string tag 1;
};

// The one attachment of the contract: a reference to a binary part.
class ns1__dataAttachment {
    _xop__Include xop__Include 1;
    @char*        xmime__contentType 0;
};
// clang-format on
