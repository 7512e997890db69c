// What the simulator writes, read back by the API stub: its writer and the stub's reader know the
// names and texts of the management API apart from each other.
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <set>
#include <string>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiNorvaneScsiInformation.h"
#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "sim/array/arrayState.h"
#include "sim/array/refusal.h"
#include "sim/protocol/apiReply.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/command.h"
#include "sim/protocol/objectModel.h"

namespace {

using Copy = std::function<void(const BASEApiObject& from, BASEApiObject& to)>;

template <class Value>
const Value& plain(const Value& value) {
    return value;
}
template <class Value>
const Value& plain(const std::unique_ptr<Value>& value) {
    return *value;
}

/// Takes a value through the stub's typed accessors; a text that its kind does not know is lost.
// NOLINTBEGIN(bugprone-macro-parentheses): a class cannot stand in them
// clang-format off
#define COPY(Name)                                                                                \
    {#Name, [](const BASEApiObject& from, BASEApiObject& to) {                                    \
         dynamic_cast<Class&>(to).Set##Name(plain(dynamic_cast<const Class&>(from).Get##Name())); \
     }},
#define COPIES(Type, ...) \
    [] { using Class = Type; return std::map<std::string, Copy>{API_FOR_EACH(COPY, __VA_ARGS__)}; }()
// NOLINTEND(bugprone-macro-parentheses)

const auto kAccessors =
    COPIES(APITarnServer, AlertOnConnectivity, ConnectedToAllControllers, Connectivity, DeleteAllowed,
           HbaCount, HbaPresent, HostCache, HostCacheIndex, Index, Mapped, Name, PathCount, PortType,
           VolumeCount, Status, ChildStatus, StatusMessage, TarnName, TarnSerialNumber, InstanceId,
           InstanceName, ObjectType);
const auto kAccessorsOfCaches = COPIES(APITarnHostCache, HostCacheConnectivityStatus, HostCacheId,
                                       Managed, ManagementIpAddress, ManagementPort);
// clang-format on

class ReplyReadingTest : public testing::Test {
protected:
    sim::ArrayState m_state{":memory:"};

    void SetUp() override {
        m_state.setIdentity("Lab <array> & Büro", 4711);
        m_state.addVolume(sim::numberedVolume(1));
        m_state.join({"hcc-1", "key", "Büro & <Lager>", {{"10.0.0.5", 3260}}});
        m_state.addServer(
            "hcc-1",
            {"hcn-1", "db-1", "linux", "6.1", {}, {{"wwn-1", "FibreChannel"}, {"wwn-2", "Iscsi"}}});
        m_state.attach("hcc-1", "vol-1");
        m_state.makeAvailable("hcc-1", "hcn-1", "vol-1");
    }

    /// What the stub makes of the simulator's answer.
    std::unique_ptr<BASEApiMethodReturn> ask(const std::string& object, const std::string& command,
                                             std::map<std::string, std::string> attributes,
                                             bool isAssociation = false) {
        sim::ApiRequest request;
        request.object = object;
        request.command = command;
        request.isAssociation = isAssociation;
        request.attributes = std::move(attributes);
        std::string answer;
        try {
            answer = sim::successReturn(sim::runCommand(m_state, request, true));
        } catch (const sim::Refusal& failure) {
            answer = sim::failureReturn(failure);
        }
        protoIPCMsg::GPBIPCMsg message;
        sim::fillReply(sim::replyDocument(answer), message);
        const APITarnHostCache::APITarnHostCacheGetListMethod method;
        return std::unique_ptr<BASEApiMethodReturn>(method.ProcessResponse(message));
    }

    void expectRead(const BASEApiMethodReturn& outcome, const sim::ApiObject& written) {
        const auto* read = dynamic_cast<const COMPObjectMethodReturn*>(&outcome);
        ASSERT_NE(read, nullptr) << outcome.GetError();
        ASSERT_EQ(read->GetObjects().size(), 1U) << written.type;
        const BASEApiObject& object = *read->GetObjects().front();
        EXPECT_EQ(object.GetObjectName(), written.type);
        APITarnHostCache copy;
        for (const auto& [name, text] : written.attributes) {
            const auto& accessors = kAccessors.contains(name) ? kAccessors : kAccessorsOfCaches;
            ASSERT_TRUE(accessors.contains(name)) << name << " is in neither list of accessors";
            ASSERT_NE(object.GetAttributeByName(name), nullptr) << name;
            accessors.at(name)(object, copy);
            EXPECT_EQ(copy.GetStringDirect(name), text) << written.type << ' ' << name;
        }
    }
};

TEST_F(ReplyReadingTest, KnowsEveryAttributeAndTextOfAnObject) {
    const auto cache = sim::hostCacheObjects(m_state).at(0);
    const auto server = sim::serverObjects(m_state).at(0);
    const std::string& cacheId = cache.text("InstanceId");
    const std::string& serverId = server.text("InstanceId");
    expectRead(*ask("TarnHostCache", "Get", {{"InstanceId", cacheId}}), cache);
    expectRead(*ask("TarnHostCache", "GetList", {}), cache);
    expectRead(*ask("TarnServer", "Get", {{"InstanceId", serverId}}), server);
    expectRead(*ask("TarnServer", "GetList", {{"Filter", "and Name = db&hy&1-"}}), server);
    expectRead(*ask("TarnHostCache", "ServerList", {{"InstanceId", cacheId}}, true), server);
    expectRead(*ask("TarnServer", "HostCache", {{"InstanceId", serverId}}, true), cache);
}

TEST_F(ReplyReadingTest, KnowsTheRecordOfAnAttachedVolume) {
    const auto outcome =
        ask("TarnHostCache", "HccAttachVolume", {{"HccId", "hcc-1"}, {"VolumeId", "vol-1"}});
    const auto* read = dynamic_cast<const METHODObjectMethodReturn*>(outcome.get());
    ASSERT_NE(read, nullptr);
    const auto* identity = dynamic_cast<const APINorvaneScsiInformation*>(read->GetObject());
    ASSERT_NE(identity, nullptr);
    const sim::Volume volume = sim::numberedVolume(1);
    EXPECT_EQ(identity->GetOriginalScsiDeviceId(), volume.original.deviceId);
    EXPECT_EQ(identity->GetOriginalScsiSerialNumber(), volume.original.serialNumber);
    EXPECT_EQ(identity->GetAliasScsiDeviceId(), volume.alias.deviceId);
    EXPECT_EQ(identity->GetAliasScsiSerialNumber(), volume.alias.serialNumber);
}

TEST_F(ReplyReadingTest, KnowsTheErrorStatesOfRefusals) {
    const std::tuple<std::string, std::map<std::string, std::string>, ErrorStateEnum> refusals[] = {
        {"Nonsense", {}, ErrorStateEnum::UnknownCommand},
        {"RemoveHccFromSan", {}, ErrorStateEnum::MissingValue},
        {"RemoveHccFromSan", {{"HccId", "hcc-9"}}, ErrorStateEnum::ObjectNotFound},
        {"RemoveHccFromSan", {{"HccId", "hcc-1"}}, ErrorStateEnum::ObjectInUse},
        {"AddHccToSan",
         {{"HccId", "hcc-1"}, {"HccKey", "x"}, {"Ipv4AddressPortList", "x"}},
         ErrorStateEnum::InvalidCredentials},
        {"AddHccToSan",
         {{"HccId", "hcc-1"}, {"HccKey", "key"}, {"Ipv4AddressPortList", "x"}},
         ErrorStateEnum::ObjectAlreadyExists},
        {"HccDetachVolume",
         {{"HccId", "hcc-1"}, {"VolumeId", "vol-1"}},
         ErrorStateEnum::ObjectInUse},
    };
    for (const auto& [command, attributes, state] : refusals) {
        const auto outcome = ask("TarnHostCache", command, attributes);
        EXPECT_FALSE(outcome->GetSuccessful());
        EXPECT_EQ(outcome->GetErrorCode(), state) << command << ": " << outcome->GetError();
    }
}

}  // namespace
