#include "client/lifecycle/loadRun.h"

#include <algorithm>
#include <list>
#include <memory>
#include <mutex>
#include <thread>

#include "client/call/clock.h"
#include "client/call/interruption.h"

namespace client {

namespace {

// What the workers share. They outlive the run when a second signal ends it, so they own it, too.
class Load {
public:
    Load(const ServiceOptions& service, const LoadPlan& plan) : m_service(service), m_plan(plan) {
        // Made here, so that what is wrong with the options is raised where it can be caught.
        for (int i = 0; i < plan.parallel; ++i) {
            m_sessions.emplace_back(service);
        }
    }

    static LoadResult run(const std::shared_ptr<Load>& load) {
        std::vector<std::thread> workers;
        load->m_working = load->m_plan.parallel;
        for (Session& session : load->m_sessions) {
            const auto worker = static_cast<int>(workers.size());
            workers.emplace_back([load, &session, worker] { load->work(session, worker); });
        }
        const bool isOver = load->waitForWorkers();
        for (std::thread& worker : workers) {
            isOver ? worker.join() : worker.detach();
        }
        load->m_plan.onSecond(load->progress());
        return load->takeResult();
    }

private:
    // False when a second signal came before the workers had ended.
    bool waitForWorkers() {
        for (double next = m_began + 1;; next += 1) {
            Interruption::Event event = m_interruption.wait(next - now());
            while (event == Interruption::Event::Signal && !m_stop.isRequested()) {
                m_stop.request();
                m_plan.onSignal();
                event = m_interruption.wait(next - now());
            }
            if (event != Interruption::Event::Timeout) {
                return event == Interruption::Event::Finish;
            }
            m_plan.onSecond(progress());
        }
    }

    LoadProgress progress() {
        const std::lock_guard lock(m_mutex);
        LoadProgress progress = m_result.progress;
        progress.seconds = now() - m_began;
        return progress;
    }

    LoadResult takeResult() {
        LoadProgress reached = progress();
        const std::lock_guard lock(m_mutex);
        m_result.progress = reached;
        m_result.abandoned = m_running;
        if (m_stop.isRequested()) {
            m_result.end = LoadEnd::Interrupted;
            m_result.status = std::max(m_result.status, ExitStatus::Interrupted);
        }
        return std::move(m_result);
    }

    void work(Session& session, int worker) {
        const LifeControl control{m_service.retry, m_plan.cleanup, m_stop,
                                  [this] { return waitForTurn(); },
                                  [this](const LifecycleCall& call) { note(call); }};
        for (int cluster = nextLife(); cluster >= 0; cluster = nextLife()) {
            const ClusterPlan plan = m_plan.plan(cluster, worker);
            begin(plan.hccId);
            end(plan.hccId, runLifecycle(session, plan, control));
        }
        const std::lock_guard lock(m_mutex);
        if (--m_working == 0) {
            m_interruption.finish();
        }
    }

    // The number of the life that is to be begun; below 0 for none.
    int nextLife() {
        const std::lock_guard lock(m_mutex);
        const bool isTimeOver = m_plan.seconds > 0 && now() - m_began >= m_plan.seconds;
        const bool isEnough = m_plan.clusters > 0 && m_lives >= m_plan.clusters;
        const bool hasFailed =
            m_plan.maxFailures > 0 && m_result.progress.failedCalls >= m_plan.maxFailures;
        if (hasFailed && !isEnough && !isTimeOver) {
            m_result.end = LoadEnd::TooManyFailures;
        }
        return isTimeOver || isEnough || hasFailed || m_stop.isRequested() ? -1 : m_lives++;
    }

    bool waitForTurn() {
        if (m_plan.callsPerSecond <= 0) {
            return !m_stop.isRequested();
        }
        std::unique_lock lock(m_mutex);
        const double turn = std::max(m_nextTurn, now());
        m_nextTurn = turn + 1 / m_plan.callsPerSecond;
        lock.unlock();
        return m_stop.pause(turn - now());
    }

    void begin(const std::string& cluster) {
        const std::lock_guard lock(m_mutex);
        m_running.insert(cluster);
    }

    void note(const LifecycleCall& call) {
        const std::lock_guard lock(m_mutex);
        ++m_result.progress.calls;
        m_result.progress.failedCalls += call.outcome.isDone() ? 0 : 1;
        m_result.statistics.add(call.operation, call.outcome);
        m_plan.onCall(call);
    }

    void end(const std::string& cluster, const LifeResult& life) {
        const std::lock_guard lock(m_mutex);
        ++m_result.progress.over;
        m_result.failedClusters += life.status != ExitStatus::Done || life.wasStopped ? 1 : 0;
        m_result.status = std::max(m_result.status, life.status);
        m_result.leftovers.insert(m_result.leftovers.end(), life.leftovers.begin(),
                                  life.leftovers.end());
        m_running.erase(cluster);
    }

    const ServiceOptions m_service;
    const LoadPlan m_plan;
    const double m_began = now();
    const Interruption m_interruption;
    Stop m_stop;
    std::list<Session> m_sessions;
    std::mutex m_mutex;  // Guards what follows.
    int m_working = 0;
    int m_lives = 0;
    double m_nextTurn = 0;
    std::set<std::string> m_running;
    LoadResult m_result;
};

}  // namespace

LoadResult runLoad(const ServiceOptions& service, const LoadPlan& plan) {
    return Load::run(std::make_shared<Load>(service, plan));
}

}  // namespace client
