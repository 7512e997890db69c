#pragma once

#include <string>

#include "SanApiSanApiPortBindingProxy.h"
#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "client/call/exitStatus.h"

namespace client {

using Proxy = SanApi::SanApiPortBindingProxy;

/// How one call went.
struct Outcome {
    ExitStatus status = ExitStatus::Done;
    /// Local name of the fault's code, such as "Server"; empty when no fault came.
    std::string faultCode;
    /// Why it failed, in the words of the fault or of the engine; empty when it is done.
    std::string text;
    double seconds = 0;

    bool isDone() const { return status == ExitStatus::Done; }
};

/// Reads from the engine how its last call went, which took `seconds` of at most
/// `timeoutSeconds`.
Outcome outcomeOf(Proxy& proxy, double seconds, int timeoutSeconds);

/// The engine's own words for what went wrong last.
std::string engineText(Proxy& proxy);

}  // namespace client
