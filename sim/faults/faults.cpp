#include "sim/faults/faults.h"

#include <algorithm>
#include <array>

#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "sim/protocol/apiReply.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

using protoIPCMsg::GPBIPCMsg;
using Text = const std::string&;
using Rule = const FaultRule&;

// What the service makes of it, seen by its client.
constexpr std::string_view kBadMessage = "receiver fault \"Invalid content in response message\"";
constexpr std::string_view kBadReturn = "receiver fault \"Invalid response in return XML\"";
constexpr std::string_view kNoReply = "receiver fault \"Received Invalid/NULL response from tarn\"";
constexpr std::string_view kNoIdentity =
    "HccAttachVolume: receiver fault \"Failed to attach volume\"; others succeed";
constexpr std::string_view kTrueAnswer = "the true answer";

// ---- the document ----

std::string refuse(Text /*methodReturn*/, Rule rule) {
    return replyDocument(failureReturn(
        rule.code, rule.error, rule.localized.empty() ? rule.error : rule.localized, rule.detail));
}

std::string refuseWithoutTexts(Text /*methodReturn*/, Rule /*rule*/) {
    return replyDocument(xmlWrap("ApiMethodReturn", xmlElement("Successful", "False")));
}

std::string plainSuccess(Text /*methodReturn*/, Rule /*rule*/) {
    return replyDocument(successReturn(returnTrue()));
}

std::string otherObject(Text /*methodReturn*/, Rule /*rule*/) {
    const std::string address = xmlWrap(
        "Ipv4AddressPort", xmlElement("Ipv4Address", "192.0.2.1") + xmlElement("Port", "3260"));
    return replyDocument(successReturn(xmlWrap("ReturnMethodObject", address)));
}

std::string withoutValue(Text /*methodReturn*/, Rule /*rule*/) {
    return replyDocument(successReturn(""));
}

std::string withoutReturn(Text /*methodReturn*/, Rule /*rule*/) {
    return replyDocument("");
}

std::string twoReturns(Text methodReturn, Rule /*rule*/) {
    return replyDocument(methodReturn + methodReturn);
}

std::string otherRoot(Text methodReturn, Rule /*rule*/) {
    return xmlWrap("someapi", methodReturn);
}

std::string badXml(Text methodReturn, Rule /*rule*/) {
    const std::string document = replyDocument(methodReturn);
    return document.substr(0, document.size() / 2);
}

std::string otherDocument(Text /*methodReturn*/, Rule rule) {
    return rule.document;
}

std::string emptyDocument(Text /*methodReturn*/, Rule /*rule*/) {
    return "";
}

// ---- the message ----

void wrongMessageType(GPBIPCMsg& message) {
    message.set_msgtype(protoIPCMsg::IPC_API_REQUEST);
}
void withoutMessageType(GPBIPCMsg& message) {
    message.clear_msgtype();
}
void withoutResponse(GPBIPCMsg& message) {
    message.clear_apirespmsg();
}
void wrongCommandType(GPBIPCMsg& message) {
    message.mutable_apirespmsg()->clear_cmdtype();
}
void withoutCommand(GPBIPCMsg& message) {
    message.mutable_apirespmsg()->clear_cmdrespmsg();
}

// ---- the bytes ----

void announce(ReplyPlan& plan, std::uint32_t length) {
    ipcFraming::encodeLength(length, std::span<char, ipcFraming::kHeaderSize>(
                                         plan.bytes.data(), ipcFraming::kHeaderSize));
    plan.closeAfter = true;
}

void garbage(ReplyPlan& plan, Rule /*rule*/) {
    std::fill(plan.bytes.begin() + ipcFraming::kHeaderSize, plan.bytes.end(), '\xff');
}

void otherProtocol(ReplyPlan& plan, Rule /*rule*/) {
    plan.bytes = "HTTP/1.0 400 Bad Request\r\n\r\n";
    plan.closeAfter = true;
}

void lengthZero(ReplyPlan& plan, Rule /*rule*/) {
    announce(plan, 0);
}
void lengthTooLong(ReplyPlan& plan, Rule /*rule*/) {
    announce(plan, static_cast<std::uint32_t>(ipcFraming::kMaxBodySize) + 1);
}
void lengthHuge(ReplyPlan& plan, Rule /*rule*/) {
    announce(plan, 0xFFFFFFFFU);
}

void closeEarly(ReplyPlan& plan, Rule rule) {
    // Never the whole reply, else there is nothing early about it.
    plan.bytes.resize(
        std::min<std::size_t>(static_cast<std::size_t>(rule.bytes), plan.bytes.size() - 1));
    plan.closeAfter = true;
}

void down(ReplyPlan& plan, Rule /*rule*/) {
    plan.bytes.clear();
    plan.closeAfter = true;
}

void reset(ReplyPlan& plan, Rule rule) {
    closeEarly(plan, rule);
    plan.reset = true;
}

void delay(ReplyPlan& plan, Rule rule) {
    plan.delay = ReplyPlan::Milliseconds(rule.delayMs > 0 ? rule.delayMs : 5000);
}

void drip(ReplyPlan& plan, Rule rule) {
    plan.chunk = static_cast<std::size_t>(std::max(rule.chunk, 1));
    plan.interval = ReplyPlan::Milliseconds(rule.intervalMs > 0 ? rule.intervalMs : 10);
}

// To add a fault: write the step that spoils the reply on its layer, and give it a row. The
// last two columns are what simctl, the page and the manual show.
// clang-format off
constexpr std::array kKinds = {
    //        name                  strikes     runs   document            message             wire           does, client sees
    FaultKind{"refuse",             "words",    false, refuse,             nullptr,            nullptr,
              "fails the call with the texts of the rule", "receiver fault with the rule's \"error\" text"},
    FaultKind{"refuseWithoutTexts", "words",    false, refuseWithoutTexts, nullptr,            nullptr,
              "fails the call and says nothing", "receiver fault with an empty text"},
    FaultKind{"succeed",            "words",    false, plainSuccess,       nullptr,            nullptr,
              "answers a plain success and does nothing", kNoIdentity},
    FaultKind{"answer",             "document", false, otherDocument,      nullptr,            nullptr,
              "answers with the rule's \"document\" as it stands", "what the service makes of that document"},
    FaultKind{"noObject",           "document", true,  plainSuccess,       nullptr,            nullptr,
              "answers a plain success where an object is due", kNoIdentity},
    FaultKind{"otherObject",        "document", true,  otherObject,        nullptr,            nullptr,
              "answers with an object of another class", kNoIdentity},
    FaultKind{"noValue",            "document", true,  withoutValue,       nullptr,            nullptr,
              "answers a success without any value", kBadReturn},
    FaultKind{"noReturn",           "document", true,  withoutReturn,      nullptr,            nullptr,
              "answers without an ApiMethodReturn", kBadReturn},
    FaultKind{"twoReturns",         "document", true,  twoReturns,         nullptr,            nullptr,
              "answers with two ApiMethodReturn elements", kBadReturn},
    FaultKind{"wrongRoot",          "document", true,  otherRoot,          nullptr,            nullptr,
              "answers with a document that is not compapi", kBadReturn},
    FaultKind{"badXml",             "document", true,  badXml,             nullptr,            nullptr,
              "answers with half a document", kBadMessage},
    FaultKind{"emptyDocument",      "document", true,  emptyDocument,      nullptr,            nullptr,
              "answers with an empty document", kBadMessage},
    FaultKind{"wrongMessageType",   "message",  true,  nullptr,            wrongMessageType,   nullptr,
              "answers with a message of the request's type", kBadMessage},
    FaultKind{"noMessageType",      "message",  true,  nullptr,            withoutMessageType, nullptr,
              "answers with a message of no type", kBadMessage},
    FaultKind{"noResponse",         "message",  true,  nullptr,            withoutResponse,    nullptr,
              "answers with a message that carries no response", kBadMessage},
    FaultKind{"wrongCommandType",   "message",  true,  nullptr,            wrongCommandType,   nullptr,
              "answers with a response of no known command type", kBadMessage},
    FaultKind{"noCommand",          "message",  true,  nullptr,            withoutCommand,     nullptr,
              "answers with a response that carries no document", kBadMessage},
    FaultKind{"garbage",            "wire",     true,  nullptr,            nullptr,            garbage,
              "answers with a frame of bytes that are no message", kNoReply},
    FaultKind{"otherProtocol",      "wire",     true,  nullptr,            nullptr,            otherProtocol,
              "answers in another protocol, without a frame", kNoReply},
    FaultKind{"lengthZero",         "wire",     true,  nullptr,            nullptr,            lengthZero,
              "announces a frame of 0 bytes", kNoReply},
    FaultKind{"lengthTooLong",      "wire",     true,  nullptr,            nullptr,            lengthTooLong,
              "announces a frame one byte above the limit of 64 MiB", kNoReply},
    FaultKind{"lengthHuge",         "wire",     true,  nullptr,            nullptr,            lengthHuge,
              "announces a frame of 4 GiB - 1", kNoReply},
    FaultKind{"down",               "wire",     false, nullptr,            nullptr,            down,
              "closes the connection without an answer", kNoReply},
    FaultKind{"closeEarly",         "wire",     true,  nullptr,            nullptr,            closeEarly,
              "closes the connection after \"bytes\" bytes of the reply (default 0)", kNoReply},
    FaultKind{"reset",              "wire",     true,  nullptr,            nullptr,            reset,
              "resets the connection after \"bytes\" bytes of the reply (default 0)", kNoReply},
    FaultKind{"delay",              "pace",     true,  nullptr,            nullptr,            delay,
              "answers late, by \"delayMs\" milliseconds (default 5000)", kTrueAnswer},
    FaultKind{"drip",               "pace",     true,  nullptr,            nullptr,            drip,
              "sends \"chunk\" bytes (default 1) every \"intervalMs\" milliseconds (default 10)", kTrueAnswer},
};
// clang-format on

}  // namespace

Json faultKinds() {
    Json out = Json::array();
    for (const FaultKind& kind : kKinds) {
        out.push_back({{"name", kind.name},
                       {"strikes", kind.strikes},
                       {"does", kind.does},
                       {"clientSees", kind.clientSees},
                       {"runsCommand", kind.runsCommand}});
    }
    return out;
}

const FaultKind* findFault(std::string_view name) {
    const auto found = std::find_if(kKinds.begin(), kKinds.end(),
                                    [name](const FaultKind& kind) { return kind.name == name; });
    return found != kKinds.end() ? &*found : nullptr;
}

}  // namespace sim
