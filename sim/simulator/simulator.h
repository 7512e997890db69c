#pragma once

#include <functional>
#include <mutex>
#include <string>
#include <string_view>

#include "sim/array/arrayState.h"
#include "sim/array/seed.h"
#include "sim/exchanges/exchangeLog.h"
#include "sim/faults/faults.h"
#include "sim/protocol/access.h"
#include "sim/wire/ipcServer.h"

namespace sim {

struct ApiRequest;

struct SimulatorOptions {
    std::string stateFile = ":memory:";
    std::string logFile;  // none
    Seed seed;
    Access access;
    Json scenario;  // none
    bool lenient = false;
    bool showKeys = false;  // cluster keys as they came in the log
};

/// The array's API manager: takes the message of a request, gives back what to send, keeps what
/// it saw. Safe from any thread: one lock guards it all, and nothing waits while it is held.
class Simulator {
public:
    /// `print` gets a line for each call. A state file that holds a state already is taken as
    /// it is, without the seed. Throws std::runtime_error when an option is no good.
    Simulator(SimulatorOptions options, std::function<void(const std::string&)> print);
    ~Simulator();

    /// `message`: a serialized GPBIPCMsg.
    ReplyPlan handle(std::string_view message);

    // What the control command and the page use.
    Json state();
    Json exchanges(std::size_t count, std::uint64_t since, bool indented);
    Json faults();
    /// Throw std::runtime_error that says what is wrong.
    Json addFault(const Json& rule);
    void addScenario(const Json& scenario);
    bool removeFault(std::uint64_t id);
    /// Drops the "faults" or the "log", takes the "state" back to its seed, or "all" of them:
    /// then also the scenario of the start is in force again.
    void reset(const std::string& what);

private:
    std::mutex m_mutex;
    SimulatorOptions m_options;
    std::function<void(const std::string&)> m_print;
    ArrayState m_state;
    ExchangeLog m_log;
    FaultPlan m_faults;
    std::uint64_t m_lastId = 0;

    std::string answer(const ApiRequest& request, Exchange& exchange);
    ReplyPlan reply(const std::string& methodReturn, const FaultRule* rule, Exchange& exchange);
    void record(const ApiRequest& request, Exchange exchange);
    void plantSeed();
    std::string masked(const std::string& document) const;
};

}  // namespace sim
