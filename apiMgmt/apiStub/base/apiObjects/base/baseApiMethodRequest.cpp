// What goes out: the request document, the message around it, and the exchange.
#include <google/protobuf/arena.h>
#include <malloc.h>

#include <array>
#include <cstddef>

#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"
#include "apiMgmt/apiStub/base/apiObjects/base/xmlText.h"
#include "apiMgmt/apiStub/base/methodReturns/apiMethodError.h"
#include "apiMgmt/common/ipc/generalUtils.h"
#include "apiMgmt/common/ipc/gpbComClient.h"
#include "apiMgmt/common/utils/secretText.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"

namespace {

constexpr const char* kSource = "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod";
// Part of the interface with operators, like the line numbers of the log.
constexpr int kNoIdentityLine = 324;
constexpr unsigned kNoIdentityMessageId = 10001;
constexpr const char* kNoIdentity =
    "Unable to create GPB request. Session identifier not specified";

constexpr const char* kDocumentTag = "compapi";
constexpr const char* kConnectionTag = "ApiConnection";
constexpr std::size_t kLocaleSize = 5;  // as in "en_US"; any other text is no locale
constexpr const char* kLocalClient = "127.0.0.1";
constexpr std::size_t kMessageMemory = 4096;

/// The element that tells whose session a request belongs to.
std::string connectionElement(const std::string& sessionKey, const std::string& locale) {
    std::string inner;
    XMLText::AppendElement(inner, "sessionkey", STRINGUtil::EscapeString(sessionKey, false));
    if (locale.size() == kLocaleSize) {
        XMLText::AppendElement(inner, "locale", STRINGUtil::EscapeString(locale, false));
    }
    std::string element;
    XMLText::AppendElement(element, kConnectionTag, inner);
    return element;
}

void fillDocument(std::string& document, const std::string& connection, const std::string& method) {
    document.reserve(connection.size() + method.size() + XMLText::ElementSize(kDocumentTag, ""));
    XMLText::AppendStartTag(document, kDocumentTag);
    document += connection;
    document += method;
    XMLText::AppendEndTag(document, kDocumentTag);
}

void addHeader(protoIPCMsg::APICmdReqMsg& command, const APIHccReqHeader& header) {
    protoIPCMsg::HccHeader& sent = *command.mutable_hccheader();
    sent.set_schemaversion(header.schemaVersion);
    sent.set_credentials(header.credentials);
    sent.set_authtoken(header.authToken);
    sent.set_hccid(header.hccId);
}

void addBlobs(protoIPCMsg::APICmdReqMsg& command, const std::map<std::string, std::string>& blobs) {
    for (const auto& [name, data] : blobs) {
        if (!data.empty()) {
            protoIPCMsg::BinaryBlob& blob = *command.add_blobs();
            blob.set_name(name);
            blob.set_data(data);
            blob.set_length(static_cast<std::int32_t>(data.size()));
        }
    }
}

/// Clears what a request carries when it was answered, or could not be.
class RequestSecrets {
public:
    explicit RequestSecrets(protoIPCMsg::GPBIPCMsg& request) : m_request(request) {}
    ~RequestSecrets() {
        // A part that is not there must not be made here: that would need memory.
        if (!m_request.apireqmsg().cmdreqmsg().has_requestdocument()) {
            return;
        }
        protoIPCMsg::APICmdReqMsg& command = *m_request.mutable_apireqmsg()->mutable_cmdreqmsg();
        clearSecret(*command.mutable_requestdocument());
        if (command.hccheader().has_credentials()) {
            clearSecret(*command.mutable_hccheader()->mutable_credentials());
        }
        if (command.hccheader().has_authtoken()) {
            clearSecret(*command.mutable_hccheader()->mutable_authtoken());
        }
    }
    RequestSecrets(const RequestSecrets&) = delete;
    RequestSecrets& operator=(const RequestSecrets&) = delete;

private:
    protoIPCMsg::GPBIPCMsg& m_request;
};

/// Gives the memory that a large reply took back to the system; the C library would keep it for
/// the next one, for each thread.
class MemoryReturn {
public:
    void NoteSize(std::size_t bytes) { m_large = bytes > kLarge; }
    ~MemoryReturn() {
        if (m_large) {
            ::malloc_trim(0);
        }
    }

private:
    static constexpr std::size_t kLarge = std::size_t{1} * 1024 * 1024;
    bool m_large = false;
};

BASEApiMethodReturn* exchange(const BASEApiMethod& method, const APIHccReqHeader* header,
                              const std::string& sessionKey,
                              const std::map<std::string, std::string>* blobs,
                              const std::string& locale) {
    // Both messages with all their parts in one piece of memory, which for a usual call is this
    // one; a longer text goes to the heap.
    MemoryReturn memoryReturn;  // ends after the messages
    alignas(std::max_align_t) std::array<char, kMessageMemory> memory;
    google::protobuf::Arena arena(memory.data(), memory.size());
    auto& request = *google::protobuf::Arena::CreateMessage<protoIPCMsg::GPBIPCMsg>(&arena);
    auto& reply = *google::protobuf::Arena::CreateMessage<protoIPCMsg::GPBIPCMsg>(&arena);
    {
        const RequestSecrets cleared(request);
        method.BuildGPBApiRequest(request, header, sessionKey, blobs, locale);
        method.SendRequestToAPIManager(request, reply);
    }
    memoryReturn.NoteSize(reply.apirespmsg().cmdrespmsg().responsedocument().size());
    return method.ProcessResponse(reply);
}

}  // namespace

BASEApiMethodReturn* BASEApiMethod::Execute(const APIHccReqHeader* header,
                                            const std::map<std::string, std::string>* blobs) const {
    return exchange(*this, header, "", blobs, "");
}

BASEApiMethodReturn* BASEApiMethod::Execute(const std::string& sessionKey,
                                            const std::map<std::string, std::string>* blobs,
                                            const std::string& locale) const {
    return exchange(*this, nullptr, sessionKey, blobs, locale);
}

void BASEApiMethod::BuildGPBApiRequest(protoIPCMsg::GPBIPCMsg& request,
                                       const APIHccReqHeader* header, const std::string& sessionKey,
                                       const std::map<std::string, std::string>* blobs,
                                       const std::string& locale) const {
    if (header == nullptr && sessionKey.empty()) {
        throw APIMethodError(kNoIdentity, ErrorStateEnum::InvalidRequest, kSource, kNoIdentityLine,
                             kNoIdentityMessageId, nullptr);
    }
    request.set_msgtype(protoIPCMsg::IPC_API_REQUEST);
    protoIPCMsg::APIReqMsg& apiRequest = *request.mutable_apireqmsg();
    apiRequest.set_cmdtype(protoIPCMsg::API_COMMAND);
    apiRequest.set_clientaddress(header != nullptr ? header->clientAddress : kLocalClient);
    protoIPCMsg::APICmdReqMsg& command = *apiRequest.mutable_cmdreqmsg();
    const std::string connection =
        header != nullptr ? std::string() : connectionElement(sessionKey, locale);
    // Straight into the message, so that the document is not copied again.
    std::string rendered = GetXMLString(false, true);
    const SecretScope cleared(rendered);
    fillDocument(*command.mutable_requestdocument(), connection, rendered);
    if (header != nullptr) {
        addHeader(command, *header);
    }
    if (blobs != nullptr) {
        addBlobs(command, *blobs);
    }
}

void BASEApiMethod::SendRequestToAPIManager(const protoIPCMsg::GPBIPCMsg& request,
                                            protoIPCMsg::GPBIPCMsg& reply) const {
    const GPBComClient client(GENERALUtils::GetEndpoint(APIManagerEndpoint));
    client.SendReceiveMessage(request, reply);
}
