#pragma once

#include <functional>
#include <string>
#include <vector>

#include "client/call/retry.h"
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

/// What a life leaves on the array.
struct Leftover {
    std::string cluster;
    std::string server;  ///< Empty where it is about none; so is the volume.
    std::string volume;
    const char* removedBy;  ///< The operation that would remove it.
    bool isCertain;         ///< False when nobody answered whether it was made or removed.
};

/// "server node-1 of cluster hcc-1" and the like, for people.
std::string textOf(const Leftover& leftover);

/// How a life is run.
struct LifeControl {
    RetryPlan retry;
    /// Take down what is there also when the life was stopped, or got no answer.
    bool cleanup = false;
    const Stop& stop;
    /// Asked before each call, and may take its time; false ends the life.
    std::function<bool()> mayCall;
    /// Gets each call that was made.
    std::function<void(const LifecycleCall&)> report;
};

struct LifeResult {
    ExitStatus status = ExitStatus::Done;  ///< Of the first call that failed.
    bool wasStopped = false;
    std::vector<Leftover> leftovers;
};

/// Runs a cluster's life against the array: it joins, adds its servers, attaches its volumes,
/// makes their data available and unavailable, reports a flush and a snapshot preparation,
/// announces a new primary manager, and takes everything down again.
///
/// After a refused call only what was surely done is still undone, so that the array is left as
/// it was; after a call without answer nothing is, unless `cleanup` is wished.
LifeResult runLifecycle(Session& session, const ClusterPlan& plan, const LifeControl& control);

}  // namespace client
