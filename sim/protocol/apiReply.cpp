#include "sim/protocol/apiReply.h"

#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

constexpr std::string_view kDeclaration = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";

std::string methodReturn(bool successful, std::string_view code, std::string_view error,
                         std::string_view localized, std::string_view detail,
                         std::string_view value) {
    std::string content = xmlElement("Error", error);
    content += xmlElement("ErrorCode", code);
    content += xmlElement("ErrorDetail", detail);
    content += xmlElement("LocalizedError", localized);
    content += xmlElement("Successful", successful ? "True" : "False");
    content += value;
    return xmlWrap("ApiMethodReturn", content);
}

}  // namespace

std::string returnTrue() {
    return xmlElement("ReturnBool", "True");
}

std::string successReturn(std::string_view value) {
    return methodReturn(true, "NoError", "", "", "", value);
}

std::string failureReturn(std::string_view code, std::string_view error, std::string_view localized,
                          std::string_view detail) {
    return methodReturn(false, code, error, localized, detail, "");
}

std::string failureReturn(const Refusal& refusal) {
    return failureReturn(refusal.code(), refusal.what(), refusal.what(), refusal.detail());
}

std::string replyDocument(std::string_view methodReturns) {
    return std::string(kDeclaration) + xmlWrap("compapi", methodReturns);
}

void fillReply(std::string document, protoIPCMsg::GPBIPCMsg& message) {
    message.set_msgtype(protoIPCMsg::IPC_API_RESPONSE);
    message.mutable_apirespmsg()->set_cmdtype(protoIPCMsg::API_COMMAND);
    message.mutable_apirespmsg()->mutable_cmdrespmsg()->set_responsedocument(std::move(document));
}

}  // namespace sim
