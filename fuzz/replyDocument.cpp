// Any text as the document of a reply: exactly one return comes out, and one that is rendered
// is read back to the same.
#include <memory>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"
#include "fuzz/fuzzTarget.h"
#include "tests/support/replyMessage.h"

namespace {

std::unique_ptr<BASEApiMethodReturn> process(const std::string& document) {
    const APITarnHostCache::APITarnHostCachePingMethod method;
    return std::unique_ptr<BASEApiMethodReturn>(method.ProcessResponse(replyWith(document)));
}

}  // namespace

void drive(std::string_view bytes) {
    const auto outcome = process(std::string(bytes));
    for (const auto& row : gObjectReturnEncodeEnumIdStrList.GetRows()) {
        const std::string document = outcome->ToString(row.id);
        require(process(document)->ToString(row.id) == document);
    }
}
