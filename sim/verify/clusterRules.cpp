#include "sim/verify/clusterRules.h"

#include <array>
#include <functional>

#include "sim/array/arrayState.h"
#include "sim/protocol/apiRequest.h"

namespace sim {

namespace {

/// How many lost calls are remembered; a cluster that never repeats them costs no more.
constexpr std::size_t kMaxLost = 1000;

/// The call up to what it changes: a repetition of it has the same subject.
std::string subjectOf(const ApiRequest& request) {
    std::string subject = request.label();
    for (const char* name : {"HccId", "HcnId", "VolumeId", "SnapshotId"}) {
        subject += '\n' + request.text(name);
    }
    return subject;
}

std::size_t digestOf(const ApiRequest& request) {
    std::string all;
    for (const auto& [name, text] : request.attributes) {
        all.append(name).append("\n").append(text).append("\n");
    }
    return std::hash<std::string>()(all);
}

bool attachBeforeJoin(const ApiRequest& request, ArrayState& state, const LostCalls& /*lost*/) {
    return request.command == "HccAttachVolume" && !state.hasJoined(request.text("HccId"));
}

bool dataOnStranger(const ApiRequest& request, ArrayState& state, const LostCalls& /*lost*/) {
    return request.command == "MakeDataAvailable" &&
           !state.isMember(request.text("HccId"), request.text("HcnId"));
}

bool detachWithData(const ApiRequest& request, ArrayState& state, const LostCalls& /*lost*/) {
    return request.command == "HccDetachVolume" &&
           !state.serversWithDataOf(request.text("VolumeId")).empty();
}

bool changedRepetition(const ApiRequest& request, ArrayState& /*state*/, const LostCalls& lost) {
    const auto before = lost.find(subjectOf(request));
    return before != lost.end() && before->second != digestOf(request);
}

// To add a rule, write a function that says whether a call breaks it, and give it a row.
// clang-format off
constexpr std::array kRules = {
    ClusterRule{"attachAfterJoin",        "a cluster attaches volumes only after it has joined",                     attachBeforeJoin},
    ClusterRule{"dataOnMembers",          "data is made available only on servers that are members",                 dataOnStranger},
    ClusterRule{"detachAfterUnavailable", "a volume is detached only after its data is unavailable on every server", detachWithData},
    ClusterRule{"repeatIsSameCall",       "a call repeated after a lost answer is the same call",                    changedRepetition},
};
// clang-format on

}  // namespace

std::span<const ClusterRule> clusterRules() {
    return kRules;
}

std::vector<std::string> RuleWatch::brokenBy(const ApiRequest& request, ArrayState& state) const {
    std::vector<std::string> broken;
    for (const ClusterRule& rule : kRules) {
        if (rule.isBrokenBy(request, state, m_lost)) {
            broken.emplace_back(rule.name);
        }
    }
    return broken;
}

void RuleWatch::answered(const ApiRequest& request, bool wasLost) {
    m_lost.erase(subjectOf(request));
    if (wasLost && m_lost.size() < kMaxLost) {
        m_lost.emplace(subjectOf(request), digestOf(request));
    }
}

}  // namespace sim
