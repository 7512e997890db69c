#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/methodReturns/apiApiMethodReturn.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "tests/apiMgmt/apiStub/apiSdk/objects/tarn/src/facts.h"

// Every typed setter and getter of every class, driven on an object that the registry made.
namespace {

/// A value of each type that a getter returns, what its setter is given, and the stored text.
template <class Value>
struct Sample {
    // Enumerations: an item that no unset attribute reads as.
    static Value Argument() { return GetEnumIdStrList(Value{}).GetRows().back().id; }
    static std::string Text() { return GetEnumIdStrList(Value{}).GetRows().back().xmlName; }
    static void Expect(const Value& value) { EXPECT_EQ(value, Argument()); }
};

template <>
struct Sample<bool> {
    static bool Argument() { return true; }
    static std::string Text() { return "True"; }
    static void Expect(bool value) { EXPECT_TRUE(value); }
};

template <>
struct Sample<std::int64_t> {
    static std::int64_t Argument() { return 5000000000; }
    static std::string Text() { return "5000000000"; }
    static void Expect(std::int64_t value) { EXPECT_EQ(value, Argument()); }
};

template <>
struct Sample<std::string> {
    static std::string Argument() { return "10.1.2.3"; }  // also an address
    static std::string Text() { return Argument(); }
    static void Expect(const std::string& value) { EXPECT_EQ(value, Argument()); }
};

template <class Enum>
struct Sample<std::vector<Enum>> {
    static std::vector<Enum> Argument() {
        const auto rows = GetEnumIdStrList(Enum{}).GetRows();
        return {rows.back().id, rows.front().id};
    }
    static std::string Text() {
        const auto rows = GetEnumIdStrList(Enum{}).GetRows();
        return std::string(rows.back().xmlName) + " " + rows.front().xmlName;
    }
    static void Expect(const std::vector<Enum>& value) { EXPECT_EQ(value, Argument()); }
};

template <>
struct Sample<std::vector<std::string>> {
    static std::vector<std::string> Argument() { return {"a:b", "c"}; }
    static std::string Text() { return "a-co-b:c"; }
    static void Expect(const std::vector<std::string>& value) { EXPECT_EQ(value, Argument()); }
};

template <>
struct Sample<std::unique_ptr<APIObjectInstance>> {
    static APIObjectInstance Argument() { return {"101.5", "TarnServer", "My: <Server>"}; }
    static std::string Text() { return "101.5 TarnServer My: <Server>"; }
    static void Expect(const std::unique_ptr<APIObjectInstance>& value) {
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(*value, Argument());
    }
};

template <>
struct Sample<std::vector<APIObjectInstance>> {
    static std::vector<APIObjectInstance> Argument() {
        return {{"101.5", "TarnServer", "My: Server"}, {"101.6", "TarnServer", "Other"}};
    }
    static std::string Text() { return "101.5 TarnServer My-co- Server:101.6 TarnServer Other"; }
    static void Expect(const std::vector<APIObjectInstance>& value) {
        EXPECT_EQ(value, Argument());
    }
};

template <>
struct Sample<GETListFilter> {
    static GETListFilter Argument() {
        GETListFilter filter(GETListFilterType::Or);
        filter.AddAttributeFilter("Name", FILTERType::Equal, "My-Volume");
        return filter;
    }
    static std::string Text() { return "or Name = My&hy&Volume-"; }
    static void Expect(const GETListFilter& value) { EXPECT_EQ(value.ToString(), Text()); }
};

template <>
struct Sample<DATETimeObject> {
    static DATETimeObject Argument() { return DATETimeObject("11/14/2026 03:04:05 PM"); }
    static std::string Text() { return "11/14/2026 03:04:05 PM"; }
    static void Expect(const DATETimeObject& value) { EXPECT_EQ(value.ToString(), Text()); }
};

template <class Record>
Record SampleRecord(const std::string& text) {
    Record record;
    record.PutStringDirect(record.GetAttributeList().front()->GetXmlName(), text);
    return record;
}

template <class Record>
struct Sample<std::unique_ptr<Record>> {
    static Record Argument() { return SampleRecord<Record>("a<b"); }
    static std::string Text() { return Argument().ToXMLString(true); }
    static void Expect(const std::unique_ptr<Record>& value) {
        ASSERT_NE(value, nullptr);
        EXPECT_EQ(value->ToXMLString(true), Text());
    }
};

template <class Record>
struct Sample<std::vector<std::unique_ptr<Record>>> {
    static std::vector<const BASEApiMethodObject*> Argument() {
        static const Record first = SampleRecord<Record>("a<b");
        static const Record second = SampleRecord<Record>("c");
        return {&first, &second};
    }
    static std::string Text() {
        std::string text;
        for (const BASEApiMethodObject* record : Argument())
            text += record->ToXMLString(true);
        return text;
    }
    static void Expect(const std::vector<std::unique_ptr<Record>>& value) {
        std::string text;
        for (const auto& record : value)
            text += record->ToXMLString(true);
        EXPECT_EQ(text, Text());
    }
};

template <class Class>
std::unique_ptr<Class> MakeFromRegistry() {
    const std::string& object = Class::GetObjectNameStatic();
    if constexpr (std::is_base_of_v<BASEApiMethod, Class>) {
        auto made = APIMethodRegistry::Instance().CreateObject(
            "API" + object + Class::GetMethodNameStatic() + "Method");
        return std::unique_ptr<Class>(dynamic_cast<Class*>(made.release()));
    } else if constexpr (std::is_base_of_v<BASEApiObject, Class>) {
        auto made = APIObjectRegistry::Instance().CreateObject(object);
        return std::unique_ptr<Class>(dynamic_cast<Class*>(made.release()));
    } else {
        auto made = APIMethodObjectRegistry::Instance().CreateObject(object);
        return std::unique_ptr<Class>(dynamic_cast<Class*>(made.release()));
    }
}

template <class Class, class Get, class Set>
void Drive(const std::string& name, Get get, Set set) {
    using Value = decltype(get(std::declval<const Class&>()));
    const std::unique_ptr<Class> owner = MakeFromRegistry<Class>();
    ASSERT_NE(owner, nullptr);
    EXPECT_FALSE(owner->IsAttributeSet(name));
    get(*owner);  // an unset attribute can be read
    set(*owner, Sample<Value>::Argument());
    const std::string stored = owner->GetStringDirect(name);
    const bool escaped = std::is_base_of_v<BASEApiMethod, Class> && !stored.starts_with('<');
    EXPECT_EQ(escaped ? STRINGUtil::UnEscapeString(stored, false) : stored, Sample<Value>::Text());
    EXPECT_EQ(escaped && stored.find_first_of("<>") != std::string::npos, false);
    EXPECT_EQ(owner->AllValues().size(), 1U);
    Sample<Value>::Expect(get(*owner));
}

struct Accessor {
    std::string xmlName;
    const BASEApiAttribute* attribute;
    std::function<void()> drive;
};

struct ClassAccessors {
    std::string fact;  // the class's name in the facts
    std::vector<Accessor> accessors;
};

#define ACCESSOR(XmlName)                                                                 \
    Accessor{#XmlName, Class::Get##XmlName##Attr(), [] {                                  \
                 Drive<Class>(                                                            \
                     #XmlName, [](const Class& owner) { return owner.Get##XmlName(); },   \
                     [](Class& owner, const auto& value) { owner.Set##XmlName(value); }); \
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
            SCOPED_TRACE(entry.fact + " " + accessor.xmlName);
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
