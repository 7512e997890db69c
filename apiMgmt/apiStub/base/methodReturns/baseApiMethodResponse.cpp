// What comes back: from the API manager's message to the one typed return.
#include <algorithm>
#include <cstdlib>
#include <limits>
#include <memory>

#include "apiMgmt/apiStub/base/apiObjects/base/apiObjectFactory.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethod.h"
#include "apiMgmt/apiStub/base/methodReturns/boolMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/enumMaskMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/enumMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/intMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/methodObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/respErrorInfo.h"
#include "apiMgmt/apiStub/base/methodReturns/stringMethodReturn.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"

namespace {

constexpr const char* kBadMessage = "Invalid content in response message";
constexpr const char* kBadDocument = "Invalid response in return XML";

using Elements = std::vector<const parser::XMLElement*>;
using ReturnPtr = std::unique_ptr<BASEApiMethodReturn>;

ReturnPtr malformed(const char* summary, const std::string& detail) {
    return std::make_unique<BASEApiMethodReturn>(false, ErrorStateEnum::ParsingError, summary,
                                                 summary, detail);
}

ReturnPtr badCount(std::size_t count) {
    return malformed(kBadDocument,
                     STRINGUtil::FormatStr(
                         "Incorrect number of APIMethodReturn elements.  Expected 1, found [%u].",
                         static_cast<unsigned>(count)));
}

/// The decimal number that the text begins with, 0 when there is none, clamped to 32 bits.
std::int32_t decimal(const std::string& text) {
    const long long number = std::strtoll(text.c_str(), nullptr, 10);
    return static_cast<std::int32_t>(
        std::clamp<long long>(number, std::numeric_limits<std::int32_t>::min(),
                              std::numeric_limits<std::int32_t>::max()));
}

ErrorStateEnum errorStateOf(const std::string& text) {
    return STRINGUtil::IsNumeric(text) ? static_cast<ErrorStateEnum>(decimal(text))
                                       : gErrorStateEnumIdStrList.GetId(text);
}

ReturnPtr withBool(const BASEApiMethod&, const parser::XMLElement& element) {
    return std::make_unique<BOOLMethodReturn>(
        STRINGUtil::ConvertStringToBool(element.GetElementContent()));
}

ReturnPtr withInt(const BASEApiMethod&, const parser::XMLElement& element) {
    return std::make_unique<INTMethodReturn>(decimal(element.GetElementContent()));
}

ReturnPtr withString(const BASEApiMethod&, const parser::XMLElement& element) {
    return std::make_unique<STRINGMethodReturn>(element.GetElementContent());
}

template <class Return>
ReturnPtr withName(const BASEApiMethod&, const parser::XMLElement& element) {
    auto made = std::make_unique<Return>(true);
    made->SetReturnObject(element.GetElementContent());
    return made;
}

template <bool isArray>
ReturnPtr withObjects(const BASEApiMethod& method, const parser::XMLElement& element) {
    return ReturnPtr(method.ParseReturnApiObjectXML(&element, isArray));
}

template <bool isArray>
ReturnPtr withRecords(const BASEApiMethod& method, const parser::XMLElement& element) {
    return ReturnPtr(method.ParseReturnApiMethodObjectXML(&element, isArray));
}

/// One kind of return value: the element that carries it, and what makes the return.
struct ReturnKind {
    const char* tag;
    ReturnPtr (*make)(const BASEApiMethod& method, const parser::XMLElement& element);
};

// The first kind whose element is present decides. To add one: a return class of its own, its
// row here, and a seed for the fuzz target of reply documents.
// clang-format off
constexpr ReturnKind kReturnKinds[] = {
    {"ReturnBool",              withBool},
    {"ReturnInt",               withInt},
    {"ReturnString",            withString},
    {"ReturnObject",            withObjects<false>},
    {"ReturnObjectArray",       withObjects<true>},
    {"ReturnMethodObject",      withRecords<false>},
    {"ReturnMethodObjectArray", withRecords<true>},
    {"ReturnEnumMask",          withName<ENUMMaskMethodReturn>},
    {"ReturnEnum",              withName<ENUMMethodReturn>},
};
// clang-format on

/// The return of the first kind found below `parent`; null when there is none.
ReturnPtr valueBelow(const BASEApiMethod& method, const parser::XMLElement& parent) {
    for (const ReturnKind& kind : kReturnKinds) {
        if (const parser::XMLElement* element = parent.GetChildElemByTag(kind.tag)) {
            return kind.make(method, *element);
        }
    }
    return nullptr;
}

/// What the message carries, or null and why not in `detail`.
const std::string* responseDocument(const protoIPCMsg::GPBIPCMsg& reply, const char*& detail) {
    detail = "Message type invalid or missing from response";
    if (reply.msgtype() != protoIPCMsg::IPC_API_RESPONSE || !reply.has_apirespmsg()) {
        return nullptr;
    }
    detail = "Command type invalid or missing from response";
    const protoIPCMsg::APIRespMsg& response = reply.apirespmsg();
    if (!response.has_cmdtype() || response.cmdtype() != protoIPCMsg::API_COMMAND ||
        !response.has_cmdrespmsg()) {
        return nullptr;
    }
    return &response.cmdrespmsg().responsedocument();
}

ReturnPtr process(const BASEApiMethod& method, const protoIPCMsg::GPBIPCMsg& reply) {
    const char* detail = nullptr;
    const std::string* document = responseDocument(reply, detail);
    if (document == nullptr) {
        return malformed(kBadMessage, detail);
    }
    parser::XMLParser reader(nullptr);
    if (!reader.ParseInPlace(*document)) {
        return malformed(kBadMessage, "Failed to parse XML response data");
    }
    const parser::XMLElement& root = *reader.GetDocumentElement();
    const Elements found = root.GetChildElemsByTagName(APIApiMethodReturn::GetObjectNameStatic());
    if (root.GetElementName() != "compapi" || found.size() != 1) {
        return badCount(found.size());
    }
    RESPErrorInfo status;
    method.ParseRespStatusNode(found.front(), status);
    if (!status.successful) {
        return std::make_unique<BASEApiMethodReturn>(false, status.errorState, status.error,
                                                     status.localizedError, status.errorDetail);
    }
    // A return that renders itself puts its value beside the status, the API manager into it.
    ReturnPtr value = valueBelow(method, *found.front());
    if (value == nullptr) {
        value = valueBelow(method, root);
    }
    return value != nullptr ? std::move(value) : badCount(found.size());
}

}  // namespace

BASEApiMethodReturn* BASEApiMethod::ProcessResponse(const protoIPCMsg::GPBIPCMsg& reply) const {
    return process(*this, reply).release();
}

void BASEApiMethod::ParseRespStatusNode(const parser::XMLElement* element,
                                        RESPErrorInfo& status) const {
    const auto textOf = [&](const BASEApiAttribute* attribute) {
        return element->GetChildElemContentByTag(attribute->GetXmlName());
    };
    status = RESPErrorInfo();
    status.successful =
        STRINGUtil::ConvertStringToBool(textOf(APIApiMethodReturn::GetSuccessfulAttr()));
    if (status.successful) {
        return;
    }
    status.errorState = errorStateOf(textOf(APIApiMethodReturn::GetErrorCodeAttr()));
    status.error = textOf(APIApiMethodReturn::GetErrorAttr());
    status.localizedError = textOf(APIApiMethodReturn::GetLocalizedErrorAttr());
    status.errorDetail = textOf(APIApiMethodReturn::GetErrorDetailAttr());
}

COMPObjectMethodReturn* BASEApiMethod::ParseReturnApiObjectXML(const parser::XMLElement* element,
                                                               bool isArray) const {
    auto made = std::make_unique<COMPObjectMethodReturn>(isArray);
    return made->ReadObjects(*element) ? made.release() : nullptr;
}

METHODObjectMethodReturn* BASEApiMethod::ParseReturnApiMethodObjectXML(
    const parser::XMLElement* element, bool isArray) const {
    auto made = std::make_unique<METHODObjectMethodReturn>(isArray);
    made->ReadObjects(*element);
    return made.release();
}
