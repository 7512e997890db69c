#pragma once

#include <functional>
#include <string>
#include <vector>

#include "client/call/session.h"

namespace client {

/// A cluster whose whole life is run.
struct ClusterPlan {
    std::string sanId = "array-1";
    std::string hccId;
    std::string hccKey;
    std::vector<std::string> servers;  ///< Ids of its nodes.
    std::vector<std::string> volumes;  ///< As the array names them; for this cluster alone.
};

/// One call of a life that was made.
struct LifecycleCall {
    std::size_t number;     ///< From 1.
    std::size_t total;      ///< Calls of a life without a failure.
    const char* operation;  ///< Such as "AddServer".
    std::string subject;    ///< Which server, which volume; empty for the cluster itself.
    Outcome outcome;
};

/// Runs a cluster's life against the array: it joins, adds its servers, attaches its volumes,
/// makes their data available and unavailable, reports a flush and a snapshot preparation,
/// announces a new primary manager, and takes everything down again.
///
/// After a refused call only what was done is still undone, so that the array is left as it was;
/// after a call without answer nothing is. `report` gets each call that was made. Gives the
/// status of the first call that failed, or done.
ExitStatus runLifecycle(Session& session, const ClusterPlan& plan,
                        const std::function<void(const LifecycleCall&)>& report);

}  // namespace client
