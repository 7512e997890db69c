#pragma once

#include <functional>

#include "client/lifecycle/lifecycle.h"
#include "client/report/callStatistics.h"

namespace client {

/// Many clusters' lives, several at a time.
struct LoadPlan {
    int clusters = 1;
    int parallel = 1;  ///< Lives at a time, each run by a worker of its own.
    /// The plan of a cluster (from 0) that a worker (from 0) runs. Called from several threads.
    std::function<ClusterPlan(int cluster, int worker)> plan;
    /// Told after each life how many are over. Called by one thread at a time.
    std::function<void(int over)> progress;
};

struct LoadResult {
    CallStatistics statistics;
    double seconds = 0;
    int failedClusters = 0;
    ExitStatus status = ExitStatus::Done;  ///< The gravest of all lives.
};

/// Raises std::invalid_argument when the service's TLS options cannot be used.
LoadResult runLoad(const ServiceOptions& service, const LoadPlan& plan);

}  // namespace client
