#include "apiMgmt/webservices/sanService/processSetUp.h"

#include <google/protobuf/arena.h>

#include <array>
#include <cstddef>
#include <ctime>
#include <exception>
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

void setUpThread() {
    static thread_local bool ready = false;  // the first look makes room for all our own
    if (!ready) {
        ready = true;
        // Volatile, since a result that nobody wants is not asked for.
        [[maybe_unused]] const volatile int exceptions = std::uncaught_exceptions();
        alignas(std::max_align_t) std::array<char, 1024> room{};
        const google::protobuf::Arena arena(room.data(), room.size());
    }
}

void setUpProcess() {
    setUpThread();
    try {
        renewApiMgrPort();
    } catch (const std::bad_alloc&) {
        return;
    }
    static const bool rehearsed = rehearse();
    (void)rehearsed;
}
