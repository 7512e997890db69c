#include <gtest/gtest.h>

#include <set>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/methodReturns/apiApiMethodReturn.h"
#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

// Every typed accessor of every class is there, and its descriptor is the stated one. What the
// accessors of each kind do is shown on the sample classes of the base.
namespace {

struct ClassAccessors {
    std::string fact;  // the class's name in the facts
    std::vector<const BASEApiAttribute*> attributes;
};

#define ACCESSOR(XmlName)                                                              \
    (static_cast<void>(&Class::Get##XmlName), static_cast<void>(&Class::Set##XmlName), \
     Class::Get##XmlName##Attr()),
#define ACCESSORS(Fact, Type, ...)                                          \
    [] {                                                                    \
        using Class = Type;                                                 \
        return ClassAccessors{Fact, {API_FOR_EACH(ACCESSOR, __VA_ARGS__)}}; \
    }()
#define METHOD_ACCESSORS(Object, Command, ...)                                           \
    ACCESSORS("method " #Object " " #Command, API##Object::API##Object##Command##Method, \
              __VA_ARGS__)

std::vector<ClassAccessors> AllAccessors() {
    return {
        ACCESSORS("rows BaseApiObject", APITarnServer, InstanceId, InstanceName, ObjectType),
        ACCESSORS("rows TarnBaseApiObject", APITarnServer, TarnName, TarnSerialNumber),
        ACCESSORS("rows TarnStatusBaseApiObject", APITarnServer, Status, ChildStatus,
                  StatusMessage),
        ACCESSORS("object ApiMethodReturn", APIApiMethodReturn, Error, ErrorCode, ErrorDetail,
                  Locale, LocalizedError, ReturnObjectEncode, Successful, WarningList),
        ACCESSORS("object TarnServer", APITarnServer, AlertOnConnectivity,
                  AlertOnPartialConnectivity, ConnectedToAllControllers, Connectivity,
                  DeleteAllowed, HbaCount, HbaPresent, HostCache, HostCacheIndex, Index,
                  ManagementApplication, Mapped, MaximumPathCount, Name, NextAvailableLun, Notes,
                  OperatingSystem, OperatingSystemIndex, Parent, ParentIndex, PathCount, PortType,
                  RemoveHbasAllowed, ServerFolder, ServerFolderIndex, ServerFolderPath, Type,
                  VolumeCount),
        ACCESSORS("object TarnHostCache", APITarnHostCache, HostCacheConnectivityStatus,
                  HostCacheId, Managed, ManagementIpAddress, ManagementPort),
        ACCESSORS("record Ipv4AddressPort", APIIpv4AddressPort, Ipv4Address, Port),
        ACCESSORS("record NorvaneInterfaceInformation", APINorvaneInterfaceInformation, InterfaceId,
                  InterfaceType),
        ACCESSORS("record NorvaneScsiInformation", APINorvaneScsiInformation, AliasScsiDeviceId,
                  AliasScsiSerialNumber, OriginalScsiDeviceId, OriginalScsiSerialNumber),
        ACCESSORS("record TarnAdvancedMapping", APITarnAdvancedMapping, BootVolume,
                  HostCacheDataPolicy, HostCachePolicy, MapToDownServerHbas, MaximumPathCount,
                  NoPreferredUseNextAvailable, PreferredController, PreferredLun,
                  PreferredServerHbaList, PreferredTransportTypes, ReadOnly, UseNextAvailable,
                  UseSameLunAsSource, VirtualServerMapping),
        ACCESSORS("record HistoricalFilter", APIHistoricalFilter, EndTime, FilterTime,
                  MaxCountReturn, StartTime, UseCurrent, UseEndOfDay, UseStartOfDay),
        METHOD_ACCESSORS(TarnHostCache, Get, InstanceId),
        METHOD_ACCESSORS(TarnHostCache, GetList, Filter),
        METHOD_ACCESSORS(TarnHostCache, AddHccToSan, HccId, HccKey, HccName, Ipv4AddressPortList),
        METHOD_ACCESSORS(TarnHostCache, RemoveHccFromSan, HccId, SanId),
        METHOD_ACCESSORS(TarnHostCache, AddServer, HccId, HcnId, HcnStorageInterfaceList, Hostname,
                         Ipv4AddressPortList, OsType, OsVersion, SanId),
        METHOD_ACCESSORS(TarnHostCache, RemoveServer, HccId, HcnId, SanId),
        METHOD_ACCESSORS(TarnHostCache, HccAttachVolume, HccId, SanId, VolumeId),
        METHOD_ACCESSORS(TarnHostCache, HccDetachVolume, HccId, SanId, VolumeId),
        METHOD_ACCESSORS(TarnHostCache, MakeDataAvailable, HccId, HcnId, SanId, VolumeId),
        METHOD_ACCESSORS(TarnHostCache, MakeDataUnavailable, HccId, HcnId, SanId, VolumeId),
        METHOD_ACCESSORS(TarnHostCache, FlushComplete, HccId, SanId, SanOpaque, SnapshotId,
                         VolumeId),
        METHOD_ACCESSORS(TarnHostCache, SnapshotPrepareComplete, HccId, SanId, SnapshotId,
                         VolumeId),
        METHOD_ACCESSORS(TarnHostCache, NewPrimaryCfmAddress, HccId, ManagementIpAddressList),
        METHOD_ACCESSORS(TarnHostCache, RenameHccInSan, HccId, Name, SanId, User),
        METHOD_ACCESSORS(TarnHostCache, CreateServerCluster, AlertOnConnectivity, Name, Notes,
                         ServerList),
        METHOD_ACCESSORS(TarnServer, Get, InstanceId),
        METHOD_ACCESSORS(TarnServer, GetList, Filter),
        METHOD_ACCESSORS(TarnServer, Delete, ManagementApplication),
        METHOD_ACCESSORS(TarnServer, MapToVolume, Advanced, ManagementApplication, Volume),
        METHOD_ACCESSORS(TarnServer, GetHistoricalStorageUsage, HistoricalFilter),
        METHOD_ACCESSORS(TarnServer, GetHistoricalIoUsage, HistoricalFilter),
        METHOD_ACCESSORS(TarnServer, AddManagementLock, ManagementApplication),
        METHOD_ACCESSORS(TarnServer, RemoveManagementLock, ManagementApplication),
    };
}

TEST(SdkAccessors, EveryStatedAttributeHasThemAndItsDescriptor) {
    std::set<std::string> stated;
    std::set<std::string> found;
    for (const ClassFact& fact : AllFacts())
        for (const AttributeFact& attribute : fact.attributes)
            stated.insert(fact.name + " " + attribute.row);
    for (const ClassAccessors& entry : AllAccessors())
        for (const BASEApiAttribute* attribute : entry.attributes)
            found.insert(entry.fact + " " + DescribeAttribute(*attribute));
    EXPECT_EQ(found, stated);
}

}  // namespace
