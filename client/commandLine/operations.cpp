#include "client/commandLine/operations.h"

#include <cctype>

#include "client/commandLine/messageFields.h"

namespace client {

namespace {

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
    // How to add one: a row here, and its options in messageFields.cpp.
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
