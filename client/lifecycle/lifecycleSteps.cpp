#include "client/lifecycle/lifecycleSteps.h"

#include <array>

#include "client/call/messageParts.h"

namespace client {

namespace {

constexpr unsigned short kManagementPort = 443;
constexpr const char* kSnapshotId = "snapshot-1";

// The members that most messages have, as far as they have them.
template <class Message>
Message messageFor(const Subject& subject) {
    Message message;
    message.hccId = subject.cluster.hccId;
    if constexpr (requires { message.sanId; }) {
        message.sanId = subject.cluster.sanId;
    }
    if constexpr (requires { message.hcnId; }) {
        message.hcnId = subject.server;
    }
    if constexpr (requires { message.sanVolumeId; }) {
        message.sanVolumeId = subject.volume;
    }
    if constexpr (requires { message.snapshotId; }) {
        message.snapshotId = kSnapshotId;
    }
    return message;
}

// A call whose message has no other members.
template <class Message, class Reply, int (Proxy::*operation)(Message*, Reply*)>
Outcome plain(Session& session, const Subject& subject) {
    auto message = messageFor<Message>(subject);
    Reply reply;
    return session.call(operation, message, reply);
}

Outcome ping(Session& session, const Subject& /*subject*/) {
    SanApi::ns1__Ping message;
    SanApi::ns1__PingResponse reply;
    return session.call(&Proxy::Ping, message, reply);
}

// An address of the range that is set aside for examples.
Address exampleAddress(const char* host) {
    return {SanApi::ns1__InetAddressType__ipv4, host, kManagementPort};
}

Outcome join(Session& session, const Subject& subject) {
    MessageParts parts;
    auto message = messageFor<SanApi::ns1__AddHccToSan>(subject);
    message.hccName = parts.text("Cluster " + subject.cluster.hccId);
    message.hccKey = subject.cluster.hccKey;
    message.cfmIpAddresses.push_back(parts.address(exampleAddress("192.0.2.1")));
    SanApi::ns1__AddHccToSanResponse reply;
    return session.call(&Proxy::AddHccToSan, message, reply);
}

Outcome addServer(Session& session, const Subject& subject) {
    MessageParts parts;
    SanApi::ns1__AddServer message;
    message.sanId = subject.cluster.sanId;
    message.hcnInfo = parts.make<SanApi::ns1__hcnDiscoverableObject>();
    message.hcnInfo->hccId = subject.cluster.hccId;
    message.hcnInfo->hcnId = subject.server;
    message.hcnInfo->hostname = parts.text(subject.server + ".example.com");
    message.hcnInfo->mgmtIpAddresses.push_back(parts.address(exampleAddress("192.0.2.2")));
    message.hcnInfo->os = parts.make<SanApi::ns1__operatingSystemObject>();
    message.hcnInfo->os->osType = "Linux";
    message.hcnInfo->os->osRelease = "6.1";
    for (const char* text : {"10:00:00:00:00:00:00:01:fc", "iqn.2001-04.com.example:node:iscsi"}) {
        message.intfInfo.push_back(parts.interface(parseInterface(text)));
    }
    SanApi::ns1__AddServerResponse reply;
    return session.call(&Proxy::AddServer, message, reply);
}

Outcome attach(Session& session, const Subject& subject) {
    auto message = messageFor<SanApi::ns1__HccAttachVolume>(subject);
    message.hcVolumeId = "cache-of-" + subject.volume;
    SanApi::ns1__HccAttachVolumeResponse reply;
    return session.call(&Proxy::HccAttachVolume, message, reply);
}

Outcome newPrimary(Session& session, const Subject& subject) {
    MessageParts parts;
    auto message = messageFor<SanApi::ns1__NewPrimaryCfmAddresses>(subject);
    message.mgmtIpAddresses.push_back(parts.address(exampleAddress("192.0.2.3")));
    SanApi::ns1__NewPrimaryCfmAddressesResponse reply;
    return session.call(&Proxy::NewPrimaryCfmAddresses, message, reply);
}

// clang-format off
#define PLAIN(name) plain<SanApi::ns1__##name, SanApi::ns1__##name##Response, &Proxy::name>

// How to add one: a row where it belongs in a cluster's life, PLAIN when the message has no
// members but those of messageFor.
constexpr std::array kSteps = {
    Step{"Ping",                    Per::Cluster,         nullptr,             ping},
    Step{"AddHccToSan",             Per::Cluster,         nullptr,             join},
    Step{"AddServer",               Per::Server,          nullptr,             addServer},
    Step{"HccAttachVolume",         Per::Volume,          nullptr,             attach},
    Step{"MakeDataAvailable",       Per::ServerAndVolume, nullptr,             PLAIN(MakeDataAvailable)},
    Step{"MakeDataUnavailable",     Per::ServerAndVolume, "MakeDataAvailable", PLAIN(MakeDataUnavailable)},
    Step{"FlushComplete",           Per::Volume,          nullptr,             PLAIN(FlushComplete)},
    Step{"SnapshotPrepareComplete", Per::Volume,          nullptr,             PLAIN(SnapshotPrepareComplete)},
    Step{"NewPrimaryCfmAddresses",  Per::Cluster,         nullptr,             newPrimary},
    Step{"HccDetachVolume",         Per::Volume,          "HccAttachVolume",   PLAIN(HccDetachVolume)},
    Step{"RemoveServer",            Per::Server,          "AddServer",         PLAIN(RemoveServer)},
    Step{"RemoveHccFromSan",        Per::Cluster,         "AddHccToSan",       PLAIN(RemoveHccFromSan)},
};

#undef PLAIN
// clang-format on

}  // namespace

std::span<const Step> lifecycleSteps() {
    return kSteps;
}

}  // namespace client
