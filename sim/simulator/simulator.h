#pragma once

#include <chrono>
#include <functional>
#include <map>
#include <mutex>
#include <string>
#include <string_view>

#include "sim/array/arrayState.h"
#include "sim/array/seed.h"
#include "sim/exchanges/exchangeLog.h"
#include "sim/faults/faults.h"
#include "sim/protocol/access.h"
#include "sim/verify/clusterRules.h"
#include "sim/wire/ipcServer.h"

namespace sim {

struct ApiRequest;

struct SimulatorOptions {
    std::string stateFile = ":memory:";
    std::string logFile;  // none
    Seed seed;
    Access access;
    Json scenario;  // none
    std::string scenarioSource = "the scenario";
    bool lenient = false;
    bool showKeys = false;  // cluster keys as they came in the log
};

/// The array's API manager: takes the message of a request, gives back what to send, keeps what
/// it saw. Safe from any thread: one lock guards it all, and nothing waits while it is held.
class Simulator {
public:
    using Milliseconds = std::chrono::milliseconds;

    /// `print` gets a line for each call. A state file that holds a state already is taken as
    /// it is, without the seed. Throws std::runtime_error when an option is no good.
    Simulator(SimulatorOptions options, std::function<void(const std::string&)> print);
    ~Simulator();

    /// `message`: a serialized GPBIPCMsg.
    ReplyPlan handle(std::string_view message);

    // What its HTTP interface offers. Those that take JSON throw std::runtime_error that says
    // what is wrong with it, and then have done nothing.
    Json state();
    /// The seed file's content, and how many volumes are made besides: {"volumes", "content"}.
    Json seed();
    /// Takes a seed in place of the one of the start, and the state back to it.
    void setSeed(const Json& seed);
    Json exchanges(const ExchangeFilter& filter, Documents documents);
    Json faults();
    Json addFault(const Json& rule);
    void addScenario(const Json& scenario);
    bool removeFault(std::uint64_t id);
    /// Drops the "faults" or the "log", takes the "state" back to its seed, or "all" of them:
    /// then also the scenario of the start is in force again.
    void reset(const Json& what);
    /// {"now", "advancedMs"}: the simulator's time, and how far it has been moved on.
    Json clock();
    /// Moves the time on: replies that wait and faults that last end so much sooner.
    void advanceClock(const Json& step);
    Json verify(const Json& expectations);
    Json recording(const ExchangeFilter& filter);

    /// Called with the step when the clock is advanced, by the thread that advances it.
    void onAdvance(std::function<void(Milliseconds)> skip);

private:
    std::mutex m_mutex;
    SimulatorOptions m_options;
    std::function<void(const std::string&)> m_print;
    std::function<void(Milliseconds)> m_skip;
    ArrayState m_state;
    ExchangeLog m_log;
    FaultPlan m_faults;
    RuleWatch m_rules;
    Milliseconds m_advanced{0};
    std::uint64_t m_lastId = 0;

    Instant now() const { return std::chrono::system_clock::now() + m_advanced; }
    std::vector<std::string> brokenRules(const ApiRequest& request);
    std::string answer(const ApiRequest& request, Exchange& exchange);
    ReplyPlan reply(const std::string& methodReturn, const FaultRule* rule, Exchange& exchange);
    void record(const ApiRequest& request, Exchange exchange);
    void plantSeed(const Seed& seed);
    void addStartScenario();
    std::string masked(const std::string& document) const;
    std::map<std::string, std::string> maskedMembers(const ApiRequest& request) const;
};

}  // namespace sim
