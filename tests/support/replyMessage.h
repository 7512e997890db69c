#pragma once

#include <string>

#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"

/// The API manager's reply to a command, with the given document.
inline protoIPCMsg::GPBIPCMsg replyWith(const std::string& document) {
    protoIPCMsg::GPBIPCMsg reply;
    reply.set_msgtype(protoIPCMsg::IPC_API_RESPONSE);
    reply.mutable_apirespmsg()->set_cmdtype(protoIPCMsg::API_COMMAND);
    reply.mutable_apirespmsg()->mutable_cmdrespmsg()->set_responsedocument(document);
    return reply;
}

/// The same as bytes of the connection.
inline std::string replyFrame(const std::string& document) {
    std::string frame;
    ipcFraming::encodeFrame(replyWith(document), frame);
    return frame;
}
