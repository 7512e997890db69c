#pragma once

#include <span>
#include <string>

#include "client/lifecycle/lifecycle.h"

namespace client {

/// What one call is about. Where a step is not repeated over servers or volumes, that one is empty.
struct Subject {
    const ClusterPlan& cluster;
    std::string server;
    std::string volume;
};

/// What a step is repeated for: it is called once for each of them.
enum class Per { Cluster, Server, Volume, ServerAndVolume };

/// One step of a cluster's life.
struct Step {
    const char* operation;
    Per per;
    const char* undoes;  ///< Which operation on the same subject; null for what builds up.
    Outcome (*run)(Session& session, const Subject& subject);
};

/// The steps in their order.
std::span<const Step> lifecycleSteps();

}  // namespace client
