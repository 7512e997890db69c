#include "sim/simulator.h"

#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "sim/apiReply.h"
#include "sim/apiRequest.h"
#include "sim/arrayState.h"
#include "sim/command.h"
#include "sim/exchange.h"
#include "sim/xmlText.h"

namespace sim {

Simulator::Simulator(std::function<void(const std::string&)> print) : m_print(std::move(print)) {}

Simulator::~Simulator() = default;

ReplyPlan Simulator::handle(std::string_view message) {
    const auto started = std::chrono::steady_clock::now();
    Exchange exchange;
    exchange.id = ++m_lastId;
    exchange.time = std::chrono::system_clock::now();
    ApiRequest request;
    std::string document;
    try {
        protoIPCMsg::GPBIPCMsg incoming;
        if (!ipcFraming::parseMessage(message, incoming)) {
            throw Refusal("ParsingError", "The bytes are not an IPC message", "");
        }
        readRequest(incoming, request);
        ArrayState state;
        document = replyDocument(successReturn(runCommand(state, request, true)));
        exchange.outcome = "ok";
    } catch (const Refusal& refusal) {
        document = replyDocument(failureReturn(refusal));
        exchange.outcome = std::string("refused: ") + refusal.what();
    }
    exchange.label = request.label();
    exchange.clientAddress = request.clientAddress;
    protoIPCMsg::GPBIPCMsg reply;
    fillReply(std::move(document), reply);
    ReplyPlan plan;
    ipcFraming::encodeFrame(reply, plan.bytes);
    exchange.took = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - started);
    m_print(summaryLine(exchange));
    return plan;
}

}  // namespace sim
