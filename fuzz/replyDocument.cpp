// Any text as the document of a reply: exactly one return comes out, and one that is rendered
// is read back to the same values.
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
    const std::string values = outcome->ToString(ObjectReturnEncodeEnum::CsvData);
    for (const auto& row : gObjectReturnEncodeEnumIdStrList.GetRows()) {
        const std::string document = outcome->ToString(row.id);
        const auto copy = process(document);
        const std::string again = copy->ToString(row.id);
        // A header names what is set, and a line of data cannot tell an empty value from none.
        require(again == document || row.id == ObjectReturnEncodeEnum::Csv);
        require(process(again)->ToString(row.id) == again);
        require(copy->ToString(ObjectReturnEncodeEnum::CsvData) == values);
    }
}
