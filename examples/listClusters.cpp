// Asks the array's API manager for its host-cache clusters and prints the answer. Links only
// the API stub:
//
//     listClusters            all clusters
//     listClusters NAME       those of that name
//
// The API manager is found as the service finds it: at 127.0.0.1, at the port of the
// service-database entry ostrel-apimgr, or 35000. build/release/sim/sanSim is one to try.
#include <iostream>
#include <memory>

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/apiTarnHostCache.h"
#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/apiStub/base/methodReturns/compObjectMethodReturn.h"
#include "apiMgmt/apiStub/base/methodReturns/generalError.h"

namespace {

using GetListMethod = APITarnHostCache::APITarnHostCacheGetListMethod;

APIHccReqHeader whoAsks() {
    APIHccReqHeader header;
    header.schemaVersion = "2.3";
    header.credentials = "example:example";
    header.clientAddress = "127.0.0.1";
    return header;
}

int printClusters(const char* name) {
    GetListMethod method;
    GETListFilter filter(GETListFilterType::And);
    if (name != nullptr) {
        filter.AddAttributeFilter("Name", FILTERType::Equal, name);
    }
    method.SetFilter(filter);
    method.ValidateRequiredAttributes();

    const APIHccReqHeader header = whoAsks();
    const std::unique_ptr<BASEApiMethodReturn> outcome(method.Execute(&header, nullptr));
    std::cout << *outcome;  // the status
    const auto* list = dynamic_cast<const COMPObjectMethodReturn*>(outcome.get());
    if (list == nullptr) {
        return 1;
    }
    std::cout << "clusters=" << list->GetObjects().size() << '\n';
    for (const BASEApiObject* object : list->GetObjects()) {
        if (const auto* cluster = dynamic_cast<const APITarnHostCache*>(object)) {
            std::cout << cluster->GetInstanceId() << ' ' << cluster->GetInstanceName() << '\n';
        }
    }
    return outcome->GetSuccessful() ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    try {
        return printClusters(argc > 1 ? argv[1] : nullptr);
    } catch (const GENERALError& failure) {
        std::cerr << "listClusters: " << failure.GetLogMessage() << '\n';
        return 3;
    }
}
