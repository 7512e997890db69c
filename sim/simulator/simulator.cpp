#include "sim/simulator/simulator.h"

#include <stdexcept>

#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "sim/protocol/apiReply.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/command.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

using Lock = std::lock_guard<std::mutex>;

/// Reads the request; the refusal of one that cannot be read is kept for later, since a fault
/// may strike that call too.
std::string read(std::string_view message, ApiRequest& request) {
    try {
        protoIPCMsg::GPBIPCMsg incoming;
        if (!ipcFraming::parseMessage(message, incoming)) {
            throw Refusal("ParsingError", "The bytes are not an IPC message",
                          "The array could not read the request.");
        }
        readRequest(incoming, request);
        return "";
    } catch (const Refusal& refusal) {
        return refusal.what();
    }
}

std::string maskedIfAny(const std::string& secret) {
    return secret.empty() ? "" : "***";
}

void applyPace(const FaultRule& rule, ReplyPlan& plan) {
    if (rule.delayMs > 0) {
        plan.delay = ReplyPlan::Milliseconds(rule.delayMs);
    }
    if (rule.chunk > 0) {
        plan.chunk = static_cast<std::size_t>(rule.chunk);
        plan.interval = ReplyPlan::Milliseconds(rule.intervalMs);
    }
}

}  // namespace

Simulator::Simulator(SimulatorOptions options, std::function<void(const std::string&)> print)
    : m_options(std::move(options)),
      m_print(std::move(print)),
      m_state(m_options.stateFile),
      m_log(m_options.logFile) {
    if (m_state.isEmpty()) {
        plantSeed();
    } else if (!m_options.seed.content.is_null()) {
        m_print("the state file holds a state already: the seed is not used");
    }
    m_state.setLenient(m_options.lenient);
    if (!m_options.scenario.is_null()) {
        m_faults.addScenario(m_options.scenario);
    }
}

Simulator::~Simulator() = default;

void Simulator::plantSeed() {
    m_state.setLenient(false);
    try {
        m_state.atomically([&] {
            m_state.clear();
            plant(m_options.seed, m_state);
        });
    } catch (const Refusal& refusal) {
        throw std::runtime_error(std::string("the seed is wrong: ") + refusal.what());
    }
    m_state.setLenient(m_options.lenient);
}

ReplyPlan Simulator::handle(std::string_view message) {
    const auto started = std::chrono::steady_clock::now();
    Exchange exchange;
    exchange.time = std::chrono::system_clock::now();
    ApiRequest request;
    const std::string unreadable = read(message, request);

    const Lock lock(m_mutex);
    exchange.id = ++m_lastId;
    FaultRule rule;
    const bool struck = m_faults.take(request.object, request.command, rule);
    nameCaller(rule, request.hccId);
    std::string methodReturn;
    if (struck && !faultNamed(rule.fault).runsCommand) {
        exchange.outcome = rule.fault == "refuse" ? "refused: " + rule.error : "not run";
    } else if (!unreadable.empty()) {
        exchange.outcome = "refused: " + unreadable;
        methodReturn = failureReturn(
            Refusal("ParsingError", unreadable, "The array could not read the request."));
    } else {
        methodReturn = answer(request, exchange);
    }
    ReplyPlan plan = reply(methodReturn, struck ? &rule : nullptr, exchange);
    exchange.took = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - started);
    record(request, std::move(exchange));
    return plan;
}

std::string Simulator::answer(const ApiRequest& request, Exchange& exchange) {
    try {
        const std::string value = runCommand(m_state, request, m_options.access.accepts(request));
        exchange.outcome = "ok";
        return successReturn(value);
    } catch (const Refusal& refusal) {
        exchange.outcome = std::string("refused: ") + refusal.what();
        return failureReturn(refusal);
    } catch (const std::exception& problem) {
        // The state file may be out of reach; the array lives on and says so.
        exchange.outcome = std::string("failed: ") + problem.what();
        return failureReturn(
            Refusal("InternalError", "Internal error of the array simulator", problem.what()));
    }
}

ReplyPlan Simulator::reply(const std::string& methodReturn, const FaultRule* rule,
                           Exchange& exchange) {
    const FaultKind* kind = rule != nullptr ? &faultNamed(rule->fault) : nullptr;
    exchange.reply = kind != nullptr && kind->document != nullptr
                         ? kind->document(methodReturn, *rule)
                         : replyDocument(methodReturn);
    protoIPCMsg::GPBIPCMsg message;
    fillReply(exchange.reply, message);
    if (kind != nullptr && kind->message != nullptr) {
        kind->message(message);
    }
    ReplyPlan plan;
    if (!ipcFraming::encodeFrame(message, plan.bytes)) {
        exchange.outcome = "failed: the reply is too long for a frame";
        plan.closeAfter = true;
    } else if (kind != nullptr) {
        if (kind->wire != nullptr) {
            kind->wire(plan, *rule);
        }
        exchange.fault = rule->fault;
        applyPace(*rule, plan);
    }
    return plan;
}

std::string Simulator::masked(const std::string& document) const {
    return m_options.showKeys ? document : maskSecrets(document);
}

void Simulator::record(const ApiRequest& request, Exchange exchange) {
    exchange.clientAddress = request.clientAddress;
    exchange.schemaVersion = request.schemaVersion;
    exchange.hccId = request.hccId;
    exchange.credentials = maskedIfAny(request.credentials);
    exchange.authToken = maskedIfAny(request.authToken);
    exchange.blobNames = request.blobNames;
    exchange.label = request.label();
    exchange.request = masked(request.document);
    m_print(summaryLine(exchange));
    m_log.add(std::move(exchange));
}

Json Simulator::state() {
    const Lock lock(m_mutex);
    return m_state.view();
}

Json Simulator::exchanges(std::size_t count, std::uint64_t since, bool indented) {
    std::vector<Exchange> found;
    {
        const Lock lock(m_mutex);
        found = m_log.last(count, since);
    }
    Json out = Json::array();
    for (const Exchange& exchange : found) {
        out.push_back(toJson(exchange, indented));
    }
    return out;
}

Json Simulator::faults() {
    Json out{{"kinds", faultKinds()}, {"commands", commandNames()}, {"rules", Json::array()}};
    const Lock lock(m_mutex);
    for (const FaultRule& rule : m_faults.rules()) {
        out["rules"].push_back(toJson(rule));
    }
    return out;
}

Json Simulator::addFault(const Json& rule) {
    FaultRule made = ruleFromJson(rule);
    const Lock lock(m_mutex);
    m_faults.add(std::move(made));
    return toJson(m_faults.rules().back());
}

void Simulator::addScenario(const Json& scenario) {
    const Lock lock(m_mutex);
    m_faults.addScenario(scenario);
}

bool Simulator::removeFault(std::uint64_t id) {
    const Lock lock(m_mutex);
    return m_faults.remove(id);
}

void Simulator::reset(const std::string& what) {
    const Lock lock(m_mutex);
    const bool all = what == "all";
    if (!all && what != "faults" && what != "log" && what != "state") {
        throw std::runtime_error("there is no \"" + what + "\" to reset");
    }
    if (all || what == "faults") {
        m_faults.clear();
        if (all && !m_options.scenario.is_null()) {
            m_faults.addScenario(m_options.scenario);
        }
    }
    if (all || what == "log") {
        m_log.clear();
    }
    if (all || what == "state") {
        plantSeed();
    }
}

}  // namespace sim
