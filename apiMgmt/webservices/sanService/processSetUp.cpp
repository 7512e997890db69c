#include "apiMgmt/webservices/sanService/processSetUp.h"

#include <ctime>
#include <memory>
#include <new>
#include <string>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"
#include "apiMgmt/common/ipc/apiMgrPort.h"
#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "apiMgmt/webservices/sanService/contract/sanContract.h"

namespace {

/// One call of the API manager without sending it.
void rehearseCall() {
    const APITarnHostCache::APITarnHostCachePingMethod method;
    const APIHccReqHeader header;
    protoIPCMsg::GPBIPCMsg message;
    method.BuildGPBApiRequest(message, &header, "", nullptr, "");
    std::string frame;
    if (ipcFraming::encodeFrame(message, frame)) {
        ipcFraming::parseMessage(std::string_view(frame).substr(ipcFraming::kHeaderSize), message);
    }
    const std::unique_ptr<const BASEApiMethodReturn> refused(method.ProcessResponse(message));
    parser::XMLParser(nullptr).ParseXMLString("<a b='c'/>");
}

bool rehearse() {
    try {
        // A context's first set-up starts the secure transport library.
        const auto context = std::make_unique<soap>();
        tzset();
        rehearseCall();
    } catch (const std::bad_alloc&) {
        return false;
    }
    return true;
}

}  // namespace

void setUpProcess() {
    try {
        renewApiMgrPort();
    } catch (const std::bad_alloc&) {
        return;
    }
    static const bool rehearsed = rehearse();
    (void)rehearsed;
}
