#include "client/lifecycle/lifecycle.h"

#include <set>
#include <utility>

#include "client/lifecycle/lifecycleSteps.h"

namespace client {

namespace {

struct Call {
    const Step* step;
    Subject subject;
};

std::vector<Subject> subjectsOf(Per per, const ClusterPlan& plan) {
    const std::vector<std::string> none = {""};
    const bool eachServer = per == Per::Server || per == Per::ServerAndVolume;
    const bool eachVolume = per == Per::Volume || per == Per::ServerAndVolume;
    std::vector<Subject> subjects;
    for (const std::string& server : eachServer ? plan.servers : none) {
        for (const std::string& volume : eachVolume ? plan.volumes : none) {
            subjects.push_back({plan, server, volume});
        }
    }
    return subjects;
}

std::vector<Call> callsOf(const ClusterPlan& plan) {
    std::vector<Call> calls;
    for (const Step& step : lifecycleSteps()) {
        for (const Subject& subject : subjectsOf(step.per, plan)) {
            calls.push_back({&step, subject});
        }
    }
    return calls;
}

std::string describe(const Subject& subject) {
    const char* between = subject.server.empty() || subject.volume.empty() ? "" : " on ";
    return subject.volume + between + subject.server;
}

// Which operations were done, and on what.
using DoneCalls = std::set<std::pair<std::string, std::string>>;

}  // namespace

ExitStatus runLifecycle(Session& session, const ClusterPlan& plan,
                        const std::function<void(const LifecycleCall&)>& report) {
    ExitStatus status = ExitStatus::Done;
    DoneCalls done;
    const std::vector<Call> calls = callsOf(plan);
    for (std::size_t i = 0; i < calls.size() && status != ExitStatus::NoAnswer; ++i) {
        const auto& [step, subject] = calls[i];
        const std::string what = describe(subject);
        const bool hasToUndo = step->undoes != nullptr && done.contains({step->undoes, what});
        if (status != ExitStatus::Done && !hasToUndo) {
            continue;
        }
        const Outcome outcome = step->run(session, subject);
        report({i + 1, calls.size(), step->operation, what, outcome});
        if (outcome.isDone()) {
            done.insert({step->operation, what});
        } else if (status == ExitStatus::Done) {
            status = outcome.status;
        }
    }
    return status;
}

}  // namespace client
