#include "client/lifecycle/loadRun.h"

#include <algorithm>
#include <atomic>
#include <chrono>
#include <list>
#include <mutex>
#include <thread>

namespace client {

namespace {

// What the workers share.
struct Shared {
    explicit Shared(const LoadPlan& wanted) : plan(wanted) {}

    const LoadPlan& plan;
    std::atomic<int> next = 0;
    std::mutex mutex;  // Guards what follows.
    int over = 0;
    LoadResult result;
};

void countLife(Shared& shared, ExitStatus status) {
    const std::lock_guard lock(shared.mutex);
    shared.result.failedClusters += status == ExitStatus::Done ? 0 : 1;
    shared.result.status = std::max(shared.result.status, status);
    shared.plan.progress(++shared.over);
}

void work(Shared& shared, Session& session, int worker) {
    CallStatistics statistics;
    const auto count = [&statistics](const LifecycleCall& call) {
        statistics.add(call.operation, call.outcome);
    };
    for (int cluster = shared.next++; cluster < shared.plan.clusters; cluster = shared.next++) {
        countLife(shared, runLifecycle(session, shared.plan.plan(cluster, worker), count));
    }
    const std::lock_guard lock(shared.mutex);
    shared.result.statistics.merge(statistics);
}

}  // namespace

LoadResult runLoad(const ServiceOptions& service, const LoadPlan& plan) {
    // Made here, so that what is wrong with the options is raised where it can be caught.
    std::list<Session> sessions;
    for (int i = 0; i < plan.parallel; ++i) {
        sessions.emplace_back(service);
    }
    Shared shared(plan);
    const auto began = std::chrono::steady_clock::now();
    std::vector<std::jthread> workers;
    for (Session& session : sessions) {
        const auto worker = static_cast<int>(workers.size());
        workers.emplace_back([&shared, &session, worker] { work(shared, session, worker); });
    }
    workers.clear();  // Joins them.
    const std::chrono::duration<double> took = std::chrono::steady_clock::now() - began;
    shared.result.seconds = took.count();
    return std::move(shared.result);
}

}  // namespace client
