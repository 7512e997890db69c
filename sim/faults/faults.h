#pragma once

#include <chrono>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "sim/text/jsonNode.h"
#include "sim/wire/ipcServer.h"

namespace protoIPCMsg {
class GPBIPCMsg;
}

namespace sim {

/// A point of the simulator's time, which can be moved on.
using Instant = std::chrono::system_clock::time_point;

/// A fault that was asked for: what goes wrong, for which calls, how often.
struct FaultRule {
    std::uint64_t id = 0;
    std::string command;  // "HccAttachVolume", "TarnServer::Get", or "*" for every command
    std::string fault;    // the name of a FaultKind
    int count = 1;        // calls that it still strikes; 0: until it is taken away
    int after = 0;        // calls that it still lets pass first
    std::string code = "InvalidState";
    std::string error = "Refused by the array simulator";
    std::string localized;  // empty: the error
    std::string detail = "A fault was asked for.";
    std::string document;           // a whole reply document, for the fault that sends one
    int delayMs = 0;                // before the reply, in milliseconds
    int chunk = 0;                  // bytes of the reply at a time; 0: all
    int intervalMs = 0;             // between chunks, in milliseconds
    int bytes = 0;                  // how much of the reply is sent before the connection ends
    int forMs = 0;                  // how long it strikes, in milliseconds; 0: ever
    Instant ends = Instant::max();  // when that is over; set by its first strike
};

/// One way in which the array can fail. The three steps strike the reply document, the message
/// around it and the bytes on the wire; an absent step leaves its layer as it is.
struct FaultKind {
    std::string_view name;
    std::string_view strikes;  // "words" of the array, "document", "message", "wire" or "pace"
    bool runsCommand;          // whether the state changes as if all were well
    /// Gets the reply's ApiMethodReturn element; gives the whole document.
    std::string (*document)(const std::string& methodReturn, const FaultRule& rule);
    void (*message)(protoIPCMsg::GPBIPCMsg& message);
    void (*wire)(ReplyPlan& plan, const FaultRule& rule);
    std::string_view does;
    std::string_view clientSees;
};

/// All kinds of fault, for showing them: a list of {name, strikes, does, clientSees,
/// runsCommand}.
Json faultKinds();
/// Null when there is none of that name.
const FaultKind* findFault(std::string_view name);

/// Reads a rule; throws std::runtime_error that says what is wrong with it.
FaultRule ruleFromJson(const JsonNode& json);
Json toJson(const FaultRule& rule);

/// Replaces "{hccId}" in the rule's error and document by the id of the cluster that calls.
void nameCaller(FaultRule& rule, const std::string& hccId);

/// The faults that wait for their calls.
class FaultPlan {
public:
    /// Gives it its id.
    const FaultRule& add(FaultRule rule);
    /// Adds the rules of a scenario, {"faults": [...]}: all of them or, when it throws
    /// std::runtime_error, none.
    void addScenario(const JsonNode& scenario);
    void clear() { m_rules.clear(); }
    /// False when there is no rule of that id.
    bool remove(std::uint64_t id);
    /// Those in force, oldest first.
    const std::vector<FaultRule>& rules(Instant now);

    /// The rule that strikes this call, if any, as it stands before the strike is counted. The
    /// oldest that fits goes first; one that has struck as often as it should is dropped.
    bool take(const std::string& object, const std::string& command, Instant now, FaultRule& rule);

private:
    std::vector<FaultRule> m_rules;
    std::uint64_t m_lastId = 0;

    void dropEnded(Instant now);
};

}  // namespace sim
