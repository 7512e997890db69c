#pragma once

#include <string>

#include "SanApiSanApiPortBindingProxy.h"
#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "client/call/exitStatus.h"
#include "client/call/serviceOptions.h"

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
    /// It failed, and yet the array may have done the work: whoever repeats the call has to know.
    bool mayHaveBeenDone = false;
    int attempts = 1;

    bool isDone() const { return status == ExitStatus::Done; }
};

/// What is known of a call besides what the engine keeps.
struct CallFacts {
    double seconds = 0;
    bool wasSent = false;  ///< A part of the request at least.
    std::string location;  ///< The headers Location and Via of the answer, if any.
    std::string via;
};

/// Reads from the engine how its last call went.
Outcome outcomeOf(Proxy& proxy, const CallFacts& facts, const ServiceOptions& options);

/// The engine's own words for what went wrong last.
std::string engineText(Proxy& proxy);

}  // namespace client
