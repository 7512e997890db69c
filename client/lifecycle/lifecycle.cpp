#include "client/lifecycle/lifecycle.h"

#include <algorithm>
#include <map>
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

// What stands on the array: what made it, on what, and whether that is certain.
using Standing = std::map<std::pair<std::string, std::string>, bool>;

class Life {
public:
    Life(Session& session, const ClusterPlan& plan, const LifeControl& control)
        : m_session(session), m_control(control), m_calls(callsOf(plan)) {}

    LifeResult run() {
        live();
        if (m_control.cleanup) {
            cleanUp();
        }
        m_result.leftovers = leftovers();
        return std::move(m_result);
    }

private:
    void live() {
        for (const Call& call : m_calls) {
            if (m_result.status == ExitStatus::NoAnswer) {
                return;
            }
            if (m_result.status != ExitStatus::Done && !undoes(call, true)) {
                continue;
            }
            if (!m_control.mayCall()) {
                m_result.wasStopped = true;
                return;
            }
            const Outcome outcome = make(call);
            if (m_result.status == ExitStatus::Done) {
                m_result.status = outcome.status;
            }
        }
    }

    // Ends at the first call that nobody answers: the others would wait as long.
    void cleanUp() {
        for (const Call& call : m_calls) {
            if (undoes(call, false) && make(call).status == ExitStatus::NoAnswer) {
                return;
            }
        }
    }

    // Whether the call takes down something that stands.
    bool undoes(const Call& call, bool isSure) const {
        if (call.step->undoes == nullptr) {
            return false;
        }
        const auto made = m_standing.find({call.step->undoes, describe(call.subject)});
        return made != m_standing.end() && (made->second || !isSure);
    }

    Outcome make(const Call& call) {
        const auto number = static_cast<std::size_t>(&call - m_calls.data()) + 1;
        Outcome outcome = withRetries(m_control.retry, call.step->operation, m_control.stop,
                                      [&] { return call.step->run(m_session, call.subject); });
        note(call, outcome);
        m_control.report(
            {number, m_calls.size(), call.step->operation, describe(call.subject), outcome});
        return outcome;
    }

    void note(const Call& call, const Outcome& outcome) {
        const std::string what = describe(call.subject);
        const bool isUndoing = call.step->undoes != nullptr;
        const std::pair made(std::string(isUndoing ? call.step->undoes : call.step->operation),
                             what);
        if (isUndoing && outcome.isDone() && call.step->per == Per::Cluster) {
            m_standing.clear();  // The array forgets all that belongs to a cluster.
        } else if (isUndoing && (outcome.isDone() || isRefusedGuess(made, outcome))) {
            m_standing.erase(made);
        } else if (outcome.isDone() || outcome.mayHaveBeenDone) {
            m_standing[made] = outcome.isDone();
        }
    }

    // What perhaps stands, and the array refuses to take down, does not stand.
    bool isRefusedGuess(const Standing::key_type& made, const Outcome& outcome) const {
        const auto found = m_standing.find(made);
        return outcome.status == ExitStatus::RefusedByArray && found != m_standing.end() &&
               !found->second;
    }

    std::vector<Leftover> leftovers() const {
        std::vector<Leftover> found;
        for (const Call& call : m_calls) {
            if (undoes(call, false)) {
                found.push_back({call.subject.cluster.hccId, call.subject.server,
                                 call.subject.volume, call.step->operation, undoes(call, true)});
            }
        }
        return found;
    }

    Session& m_session;
    const LifeControl& m_control;
    const std::vector<Call> m_calls;
    Standing m_standing;
    LifeResult m_result;
};

}  // namespace

std::string textOf(const Leftover& leftover) {
    const std::string cluster = "cluster " + leftover.cluster;
    const std::string perhaps = leftover.isCertain ? "" : "perhaps ";
    if (!leftover.server.empty() && !leftover.volume.empty()) {
        return perhaps + "data of volume " + leftover.volume + " on server " + leftover.server +
               " of " + cluster;
    }
    if (!leftover.server.empty()) {
        return perhaps + "server " + leftover.server + " of " + cluster;
    }
    return perhaps + (leftover.volume.empty()
                          ? cluster
                          : "volume " + leftover.volume + " attached to " + cluster);
}

LifeResult runLifecycle(Session& session, const ClusterPlan& plan, const LifeControl& control) {
    return Life(session, plan, control).run();
}

}  // namespace client
