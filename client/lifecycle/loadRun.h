#pragma once

#include <functional>
#include <set>

#include "client/lifecycle/lifecycle.h"
#include "client/report/callStatistics.h"

namespace client {

/// How far a run is.
struct LoadProgress {
    double seconds = 0;
    std::size_t calls = 0;
    std::size_t failedCalls = 0;
    int over = 0;  ///< Lives.
};

/// Many clusters' lives, several at a time. It ends with the last life; no new life is begun when
/// the time is over or too many calls have failed. SIGINT and SIGTERM end it after the calls
/// that are under way, a second one at once.
struct LoadPlan {
    int clusters = 1;             ///< 0 for as many as there is time for.
    int parallel = 1;             ///< Lives at a time, each run by a worker of its own.
    double seconds = 0;           ///< How long lives are begun; 0 for no limit.
    double callsPerSecond = 0;    ///< Of all workers together at most; 0 for no limit.
    std::size_t maxFailures = 0;  ///< Failed calls; 0 for no limit.
    bool cleanup = false;         ///< See LifeControl.
    /// The plan of a cluster (from 0) that a worker (from 0) runs. Called from several threads.
    std::function<ClusterPlan(int cluster, int worker)> plan;
    /// Told of each call. Called by one thread at a time.
    std::function<void(const LifecycleCall&)> onCall;
    /// Told each second, and at the end. Called by the thread that runs the load.
    std::function<void(const LoadProgress&)> onSecond;
    /// Called after the first signal, when no life begins a further call.
    std::function<void()> onSignal;
};

enum class LoadEnd { Finished, TooManyFailures, Interrupted };

struct LoadResult {
    CallStatistics statistics;
    LoadProgress progress;
    int failedClusters = 0;                ///< Lives with a failed call, or stopped.
    ExitStatus status = ExitStatus::Done;  ///< The gravest of all lives.
    LoadEnd end = LoadEnd::Finished;
    std::vector<Leftover> leftovers;
    /// Clusters whose call was still under way when a second signal came; what they leave is not
    /// known. The workers are still there then: the program has to end with std::_Exit.
    std::set<std::string> abandoned;
};

/// Raises std::invalid_argument when the service's TLS options cannot be used.
LoadResult runLoad(const ServiceOptions& service, const LoadPlan& plan);

}  // namespace client
