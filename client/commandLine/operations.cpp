#include "client/commandLine/operations.h"

#include <cctype>

namespace client {

namespace {

// Helps of the options that many messages have.
constexpr const char* kSanIdHelp = "Array that is meant";
constexpr const char* kHccIdHelp = "Cluster";
constexpr const char* kHcnIdHelp = "Server (node of the cluster)";
constexpr const char* kVolumeHelp = "Volume, as the array names it";
constexpr const char* kSnapshotHelp = "Snapshot";

template <class Message>
void clusterFields(FieldOptions& options, Message& message) {
    options.text("--san-id", message.sanId, kSanIdHelp);
    options.text("--hcc-id", message.hccId, kHccIdHelp);
}

template <class Message>
void volumeFields(FieldOptions& options, Message& message) {
    clusterFields(options, message);
    options.text("--san-volume-id", message.sanVolumeId, kVolumeHelp);
}

template <class Message>
void serverVolumeFields(FieldOptions& options, Message& message) {
    volumeFields(options, message);
    options.text("--hcn-id", message.hcnId, kHcnIdHelp);
}

template <class Message>
void snapshotFields(FieldOptions& options, Message& message) {
    volumeFields(options, message);
    options.text("--snapshot-id", message.snapshotId, kSnapshotHelp);
}

// An option of a part that the message leaves out until one of the part's options is given.
template <class Part>
void partText(FieldOptions& options, const char* name, Part*& part, std::string Part::*member,
              const char* help) {
    options.text(
        name,
        [&parts = options.parts(), &part, member](const std::string& value) {
            part = part != nullptr ? part : parts.make<Part>();
            part->*member = value;
        },
        help);
}

void operatingSystemFields(FieldOptions& options, SanApi::ns1__operatingSystemObject*& os) {
    using Os = SanApi::ns1__operatingSystemObject;
    partText(options, "--os-type", os, &Os::osType, "Operating system, such as Linux");
    partText(options, "--os-release", os, &Os::osRelease, "Its release");
    options.text(
        "--cluster-id",
        [&parts = options.parts(), &os](const std::string& value) {
            os = os != nullptr ? os : parts.make<Os>();
            os->clusterId = parts.text(value);
        },
        "Cluster of the operating system that the server belongs to");
}

void serverFields(FieldOptions& options, SanApi::ns1__hcnDiscoverableObject& server) {
    using Version = SanApi::ns1__versionInformationObject;
    options.text("--hcc-id", server.hccId, kHccIdHelp);
    options.text("--hcn-id", server.hcnId, kHcnIdHelp);
    options.optionalText("--hostname", server.hostname, "Host name of the server");
    options.addresses("--address", server.mgmtIpAddresses, "Management address");
    options.addressesNotPassedOn("--cache-address", server.cacheIpAddresses, "Cache address");
    operatingSystemFields(options, server.os);
    partText(options, "--api-version", server.norvaneVersion, &Version::apiVersion,
             "Interface version of the cluster software");
    partText(options, "--software-version", server.norvaneVersion, &Version::softwareVersion,
             "Version of the cluster software");
}

// The options of each operation's subcommand. They carry the names of the request's children,
// spelled with hyphens; lists of addresses are --address, of interfaces --interface. `message`
// lives until it was sent.

void declareFields(FieldOptions& /*options*/, SanApi::ns1__Ping& /*message*/) {}

void declareFields(FieldOptions& options, SanApi::ns1__AddHccToSan& message) {
    clusterFields(options, message);
    options.optionalText("--hcc-name", message.hccName, "Name of the cluster");
    options.secret("--hcc-key", "SANCTL_HCC_KEY", message.hccKey, "Key of the cluster");
    options.addresses("--address", message.cfmIpAddresses,
                      "Address of a fabric manager, one at least");
}

void declareFields(FieldOptions& options, SanApi::ns1__RemoveHccFromSan& message) {
    clusterFields(options, message);
}

void declareFields(FieldOptions& options, SanApi::ns1__RenameHccInSan& message) {
    clusterFields(options, message);
    options.optionalSecret("--user-token", "SANCTL_USER_TOKEN", message.userToken,
                           "Token of the user who renames");
    options.text("--name", message.name, "New name");
}

void declareFields(FieldOptions& options, SanApi::ns1__AddServer& message) {
    options.text("--san-id", message.sanId, kSanIdHelp);
    message.hcnInfo = options.parts().make<SanApi::ns1__hcnDiscoverableObject>();
    serverFields(options, *message.hcnInfo);
    options.interfaces("--interface", message.intfInfo, "Storage-facing interface");
}

void declareFields(FieldOptions& options, SanApi::ns1__RemoveServer& message) {
    clusterFields(options, message);
    options.text("--hcn-id", message.hcnId, kHcnIdHelp);
}

void declareFields(FieldOptions& options, SanApi::ns1__NewPrimaryCfmAddresses& message) {
    options.text("--hcc-id", message.hccId, kHccIdHelp);
    options.addresses("--address", message.mgmtIpAddresses,
                      "Management address of the new primary manager");
}

void declareFields(FieldOptions& options, SanApi::ns1__HccAttachVolume& message) {
    volumeFields(options, message);
    options.text("--hc-volume-id", message.hcVolumeId, "Volume, as the cluster names it");
}

void declareFields(FieldOptions& options, SanApi::ns1__HccDetachVolume& message) {
    volumeFields(options, message);
}

void declareFields(FieldOptions& options, SanApi::ns1__MakeDataAvailable& message) {
    serverVolumeFields(options, message);
}

void declareFields(FieldOptions& options, SanApi::ns1__MakeDataUnavailable& message) {
    serverVolumeFields(options, message);
}

void declareFields(FieldOptions& options, SanApi::ns1__FlushComplete& message) {
    snapshotFields(options, message);
}

void declareFields(FieldOptions& options, SanApi::ns1__SnapshotPrepareComplete& message) {
    snapshotFields(options, message);
}

template <class Message, class Reply>
using Call = int (Proxy::*)(Message*, Reply*);

template <class Message, class Reply>
class TypedRequest : public Request {
public:
    explicit TypedRequest(Call<Message, Reply> call) : m_call(call) {}

    void declareOptions(FieldOptions& options) override { declareFields(options, m_message); }
    Outcome send(Session& session) override { return session.call(m_call, m_message, m_reply); }
    Json reply() const override { return replyJson(m_reply); }

private:
    Call<Message, Reply> m_call;
    Message m_message;
    Reply m_reply;
};

template <class Message, class Reply>
Operation row(const char* name, const char* help, Call<Message, Reply> call) {
    return {name, help, [call] { return std::make_unique<TypedRequest<Message, Reply>>(call); }};
}

}  // namespace

const std::vector<Operation>& allOperations() {
    // How to add one: a row here, and an overload of declareFields above.
    // clang-format off
    static const std::vector<Operation> operations = {
        row("Ping",                    "Ask whether the service and the array answer",       &Proxy::Ping),
        row("AddHccToSan",             "Join a cluster to the array",                        &Proxy::AddHccToSan),
        row("RemoveHccFromSan",        "Take a cluster off the array",                       &Proxy::RemoveHccFromSan),
        row("RenameHccInSan",          "Rename a cluster (the service refuses it)",          &Proxy::RenameHccInSan),
        row("AddServer",               "Add a server to a cluster",                          &Proxy::AddServer),
        row("RemoveServer",            "Remove a server from its cluster",                   &Proxy::RemoveServer),
        row("NewPrimaryCfmAddresses",  "Announce the addresses of a new primary manager",    &Proxy::NewPrimaryCfmAddresses),
        row("HccAttachVolume",         "Attach a volume and show its SCSI identities",       &Proxy::HccAttachVolume),
        row("HccDetachVolume",         "Detach a volume",                                    &Proxy::HccDetachVolume),
        row("MakeDataAvailable",       "Make a volume's data available on a server",         &Proxy::MakeDataAvailable),
        row("MakeDataUnavailable",     "Make a volume's data unavailable on a server",       &Proxy::MakeDataUnavailable),
        row("FlushComplete",           "Report that the flush for a snapshot is complete",   &Proxy::FlushComplete),
        row("SnapshotPrepareComplete", "Report that a snapshot's preparation is complete",   &Proxy::SnapshotPrepareComplete),
    };
    // clang-format on
    return operations;
}

std::string commandName(const std::string& operation) {
    std::string name;
    for (const char c : operation) {
        const auto octet = static_cast<unsigned char>(c);
        if (std::isupper(octet) != 0 && !name.empty()) {
            name += '-';
        }
        name += static_cast<char>(std::tolower(octet));
    }
    return name;
}

}  // namespace client
