// Any text as the document of a reply: exactly one return comes out, and one that is rendered
// is read back to the same.
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <string>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/methodReturns/baseApiMethodReturn.h"
#include "tests/support/replyMessage.h"

namespace {

std::unique_ptr<BASEApiMethodReturn> process(const std::string& document) {
    const APITarnHostCache::APITarnHostCachePingMethod method;
    return std::unique_ptr<BASEApiMethodReturn>(method.ProcessResponse(replyWith(document)));
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto outcome = process(std::string(reinterpret_cast<const char*>(data), size));
    for (const auto& row : gObjectReturnEncodeEnumIdStrList.GetRows()) {
        const std::string document = outcome->ToString(row.id);
        if (process(document)->ToString(row.id) != document) {
            std::abort();
        }
    }
    return 0;
}
