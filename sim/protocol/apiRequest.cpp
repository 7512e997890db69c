#include "sim/protocol/apiRequest.h"

#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "sim/array/refusal.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

[[noreturn]] void malformed(const std::string& error) {
    throw Refusal("ParsingError", error, "The array could not read the request.");
}

void readHeader(const protoIPCMsg::APIReqMsg& message, ApiRequest& request) {
    const protoIPCMsg::APICmdReqMsg& command = message.cmdreqmsg();
    const protoIPCMsg::HccHeader& header = command.hccheader();
    request.clientAddress = message.clientaddress();
    request.schemaVersion = header.schemaversion();
    request.credentials = header.credentials();
    request.authToken = header.authtoken();
    request.hccId = header.hccid();
    request.document = command.requestdocument();
    for (const protoIPCMsg::BinaryBlob& blob : command.blobs()) {
        request.blobNames.push_back(blob.name());
    }
}

void readMethod(const parser::XMLElement& method, ApiRequest& request) {
    request.object = method.GetChildElemContentByTag("Object");
    request.command = method.GetChildElemContentByTag("Command");
    request.encoding = method.GetChildElemContentByTag("ObjectEncodeType");
    request.isAssociation = method.GetChildElemContentByTag("CommandType") == "Association";
    if (const auto* attributes = method.GetChildElemByTag("Attributes")) {
        for (const auto& [name, value] : attributes->GetChildTagVals()) {
            request.attributes.emplace(name, value);
        }
    }
}

void readDocument(ApiRequest& request) {
    parser::XMLParser reader(nullptr);
    if (!reader.ParseXMLString(request.document)) {
        malformed("The request document is not well-formed XML");
    }
    const parser::XMLElement& root = *reader.GetDocumentElement();
    const auto methods = root.GetChildElemsByTagName("ApiMethod");
    if (root.GetElementName() != "compapi" || methods.size() != 1) {
        malformed("The request document is not one ApiMethod inside compapi");
    }
    if (const auto* connection = root.GetChildElemByTag("ApiConnection")) {
        request.sessionKey = connection->GetChildElemContentByTag("sessionkey");
    }
    readMethod(*methods.front(), request);
}

}  // namespace

bool ApiRequest::has(const std::string& name) const {
    return attributes.count(name) > 0;
}

const std::string& ApiRequest::text(const std::string& name) const {
    static const std::string kNothing;
    const auto found = attributes.find(name);
    return found == attributes.end() ? kNothing : found->second;
}

std::vector<Record> ApiRequest::records(const std::string& name,
                                        std::string_view recordName) const {
    std::vector<Record> out;
    parser::XMLParser reader(nullptr);
    if (!has(name) || !reader.ParseXMLString(xmlWrap("list", text(name)))) {
        return out;
    }
    for (const auto* item : reader.GetDocumentElement()->GetChildElemsByTagName(recordName)) {
        Record& record = out.emplace_back();
        for (const auto& [tag, value] : item->GetChildTagVals()) {
            record.emplace(tag, value);
        }
    }
    return out;
}

std::string commandLabel(std::string_view object, std::string_view name) {
    return std::string(object).append("::").append(name);
}

std::string ApiRequest::label() const {
    return command.empty() ? "(unreadable request)" : commandLabel(object, command);
}

void readRequest(const protoIPCMsg::GPBIPCMsg& message, ApiRequest& request) {
    if (message.msgtype() != protoIPCMsg::IPC_API_REQUEST || !message.has_apireqmsg()) {
        malformed("The message is not an API request");
    }
    readHeader(message.apireqmsg(), request);
    // A missing type reads as the first one, so it has to be asked for.
    if (!message.apireqmsg().has_cmdtype() || !message.apireqmsg().has_cmdreqmsg()) {
        malformed("The message carries no API command");
    }
    readDocument(request);
}

}  // namespace sim
