#include <gtest/gtest.h>

#include <functional>
#include <map>
#include <memory>
#include <set>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/methodReturns/apiApiMethodReturn.h"
#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

// Every typed setter and getter of every class, driven on an object of it.
namespace {

// A text of each kind that reading and writing keeps, and that no unset attribute reads as. Of a
// record, writing keeps the attributes that it declares.
const std::map<std::string, std::string> kTexts = {
    // clang-format off
    {"BOOLEAN",      "True"},                       {"DATETIME",    "11/14/2026 03:04:05 PM"},
    {"ENUM",         "77"},                         {"ENUMMASK",    "77 78"},
    {"GETLISTFILTER", "or Name = a-"},              {"INSTANCEID",  "101.5"},
    {"INT",          "5000000000"},                 {"IPV4ADDRESS", "10.1.2.3"},
    {"METHODOBJECT", "<Any/>"},                     {"METHODOBJECTARRAY", "<Any/>"},
    {"NAME",         "n"},                          {"STRING",      "s"},
    {"OBJECT",       "101.5 TarnServer My Server"}, {"OBJECTARRAY", "1 T a:2 T b"},
    {"STRINGARRAY",  "a-co-b:c"},
    // clang-format on
};

// What a setter takes of what the getter gives.
template <class Value>
const Value& Given(const Value& value) {
    return value;
}
template <class Value>
const Value& Given(const std::unique_ptr<Value>& value) {
    return *value;
}
template <class Record>
std::vector<const BASEApiMethodObject*> Given(const std::vector<std::unique_ptr<Record>>& list) {
    std::vector<const BASEApiMethodObject*> pointers;
    for (const auto& record : list)
        pointers.push_back(record.get());
    return pointers;
}

template <class Class, class Rewrite>
void Drive(const BASEApiAttribute& attribute, Rewrite rewrite) {
    const std::string& name = attribute.GetXmlName();
    const std::string text = kTexts.at(KindOf(attribute));
    Class owner;
    owner.PutStringDirect(name, text);
    rewrite(owner);
    if (text.front() != '<') {
        EXPECT_EQ(owner.GetStringDirect(name), text);
    } else {
        EXPECT_NE(owner.GetStringDirect(name), text) << "not written";
    }
    EXPECT_EQ(owner.AllValues().size(), 1U);
}

struct Accessor {
    const BASEApiAttribute* attribute;
    std::function<void()> drive;
};

struct ClassAccessors {
    std::string fact;  // the class's name in the facts
    std::vector<Accessor> accessors;
};

#define ACCESSOR(XmlName)                                                      \
    Accessor{Class::Get##XmlName##Attr(), [] {                                 \
                 Drive<Class>(*Class::Get##XmlName##Attr(), [](Class& owner) { \
                     owner.Set##XmlName(Given(owner.Get##XmlName()));          \
                 });                                                           \
             }},

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

TEST(SdkAccessors, SetAndGetEveryAttribute) {
    for (const ClassAccessors& entry : AllAccessors())
        for (const Accessor& accessor : entry.accessors) {
            SCOPED_TRACE(entry.fact + " " + accessor.attribute->GetXmlName());
            accessor.drive();
        }
}

TEST(SdkAccessors, EveryStatedAttributeHasThemAndItsDescriptor) {
    std::set<std::string> stated;
    std::set<std::string> found;
    for (const ClassFact& fact : AllFacts())
        for (const AttributeFact& attribute : fact.attributes)
            stated.insert(fact.name + " " + attribute.row);
    for (const ClassAccessors& entry : AllAccessors())
        for (const Accessor& accessor : entry.accessors)
            found.insert(entry.fact + " " + DescribeAttribute(*accessor.attribute));
    EXPECT_EQ(found, stated);
}

}  // namespace
