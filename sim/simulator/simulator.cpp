#include "sim/simulator/simulator.h"

#include <algorithm>
#include <array>
#include <stdexcept>

#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/common/text/documentText.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"
#include "sim/protocol/apiReply.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/command.h"
#include "sim/verify/verification.h"

namespace sim {

namespace {

using Lock = std::lock_guard<std::mutex>;

constexpr std::int64_t kMaxAdvance = 365LL * 24 * 3'600'000;  // milliseconds

/// Elements whose content is a secret. To add one, append its name.
constexpr std::array<std::string_view, 2> kSecretElements = {"HccKey", "sessionkey"};

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
    } catch (const Refusal& failure) {
        return failure.what();
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
        plantSeed(m_options.seed);
    } else if (!m_options.seed.content.is_null()) {
        m_print("the state file holds a state already: the seed is not used");
    }
    m_state.setLenient(m_options.lenient);
    addStartScenario();
}

Simulator::~Simulator() = default;

void Simulator::plantSeed(const Seed& seed) {
    // A lenient array would make what the seed forgets, and nobody would be told.
    m_state.setLenient(false);
    try {
        m_state.atomically([&] {
            m_state.clear();
            plant(seed, m_state);
        });
    } catch (...) {
        m_state.setLenient(m_options.lenient);
        throw;
    }
    m_state.setLenient(m_options.lenient);
    m_rules.clear();
}

void Simulator::addStartScenario() {
    if (!m_options.scenario.is_null()) {
        m_faults.addScenario(JsonNode(m_options.scenario, m_options.scenarioSource));
    }
}

ReplyPlan Simulator::handle(std::string_view message) {
    const auto started = std::chrono::steady_clock::now();
    Exchange exchange;
    ApiRequest request;
    const std::string unreadable = read(message, request);

    const Lock lock(m_mutex);
    exchange.id = ++m_lastId;
    exchange.time = now();
    FaultRule rule;
    const bool struck = m_faults.take(request.object, request.command, exchange.time, rule);
    nameCaller(rule, request.hccId);
    const FaultKind* kind = struck ? findFault(rule.fault) : nullptr;
    exchange.brokenRules = brokenRules(request);
    std::string methodReturn;
    if (kind != nullptr && !kind->runsCommand) {
        exchange.outcome = rule.fault == "refuse" ? "refused: " + rule.error : "not run";
    } else if (!unreadable.empty()) {
        exchange.outcome = "refused: " + unreadable;
        methodReturn = failureReturn(
            Refusal("ParsingError", unreadable, "The array could not read the request."));
    } else {
        methodReturn = answer(request, exchange);
    }
    m_rules.answered(request, kind != nullptr && kind->runsCommand && kind->strikes == "wire");
    ReplyPlan plan = reply(methodReturn, struck ? &rule : nullptr, exchange);
    exchange.took = std::chrono::duration_cast<std::chrono::microseconds>(
        std::chrono::steady_clock::now() - started);
    record(request, std::move(exchange));
    return plan;
}

std::vector<std::string> Simulator::brokenRules(const ApiRequest& request) {
    try {
        return m_rules.brokenBy(request, m_state);
    } catch (const std::runtime_error&) {
        return {};  // the state is out of reach; the command says so
    }
}

std::string Simulator::answer(const ApiRequest& request, Exchange& exchange) {
    try {
        const std::string value = runCommand(m_state, request, m_options.access.accepts(request));
        exchange.outcome = "ok";
        return successReturn(value);
    } catch (const Refusal& failure) {
        exchange.outcome = std::string("refused: ") + failure.what();
        return failureReturn(failure);
    } catch (const std::exception& failure) {
        // The state file may be out of reach; the array lives on and says so.
        exchange.outcome = std::string("failed: ") + failure.what();
        return failureReturn(
            Refusal("InternalError", "Internal error of the array simulator", failure.what()));
    }
}

ReplyPlan Simulator::reply(const std::string& methodReturn, const FaultRule* rule,
                           Exchange& exchange) {
    const FaultKind* kind = rule != nullptr ? findFault(rule->fault) : nullptr;
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
    return m_options.showKeys ? document : text::maskSecrets(document, kSecretElements);
}

std::map<std::string, std::string> Simulator::maskedMembers(const ApiRequest& request) const {
    auto members = request.attributes;
    for (auto& [name, value] : members) {
        const bool secret = std::find(kSecretElements.begin(), kSecretElements.end(), name) !=
                            kSecretElements.end();
        value = secret && !m_options.showKeys ? "***" : masked(value);
    }
    return members;
}

void Simulator::record(const ApiRequest& request, Exchange exchange) {
    exchange.clientAddress = request.clientAddress;
    exchange.schemaVersion = request.schemaVersion;
    exchange.hccId = request.hccId;
    exchange.credentials = maskedIfAny(request.credentials);
    exchange.authToken = maskedIfAny(request.authToken);
    exchange.blobNames = request.blobNames;
    exchange.label = request.label();
    exchange.members = maskedMembers(request);
    exchange.request = masked(request.document);
    m_print(summaryLine(exchange));
    m_log.add(std::move(exchange));
}

Json Simulator::state() {
    const Lock lock(m_mutex);
    return m_state.view();
}

Json Simulator::seed() {
    const Lock lock(m_mutex);
    Json content = m_options.seed.content.is_null() ? Json::object() : m_options.seed.content;
    if (content.contains("clusters") && !m_options.showKeys) {
        for (Json& cluster : content["clusters"]) {
            if (cluster.contains("key")) {
                cluster["key"] = "***";
            }
        }
    }
    return Json{{"volumes", m_options.seed.volumes}, {"content", std::move(content)}};
}

void Simulator::setSeed(const Json& seed) {
    const JsonNode node(seed, "the request");
    node.only({"volumes", "content"});
    Seed fresh;
    fresh.volumes = static_cast<int>(node.number("volumes", 0, Seed::kMaxVolumes));
    if (node.has("content")) {
        fresh.content = node.member("content").json();
    }
    const Lock lock(m_mutex);
    plantSeed(fresh);
    m_options.seed = std::move(fresh);
}

Json Simulator::exchanges(const ExchangeFilter& filter, Documents documents) {
    std::vector<Exchange> found;
    {
        const Lock lock(m_mutex);
        found = m_log.select(filter);
    }
    Json out = Json::array();
    for (const Exchange& exchange : found) {
        out.push_back(toJson(exchange, documents));
    }
    return out;
}

Json Simulator::faults() {
    Json out = Json::array();
    const Lock lock(m_mutex);
    for (const FaultRule& rule : m_faults.rules(now())) {
        out.push_back(toJson(rule));
    }
    return out;
}

Json Simulator::addFault(const Json& rule) {
    FaultRule fault = ruleFromJson(JsonNode(rule, "the fault"));
    const Lock lock(m_mutex);
    return toJson(m_faults.add(std::move(fault)));
}

void Simulator::addScenario(const Json& scenario) {
    const Lock lock(m_mutex);
    m_faults.addScenario(JsonNode(scenario, "the scenario"));
}

bool Simulator::removeFault(std::uint64_t id) {
    const Lock lock(m_mutex);
    return m_faults.remove(id);
}

void Simulator::reset(const Json& what) {
    const JsonNode node(what, "the reset");
    node.only({"what"});
    const std::string part = node.text("what", "all");
    const bool all = part == "all";
    if (!all && part != "faults" && part != "log" && part != "state") {
        node.member("what").fail("has to be \"faults\", \"log\", \"state\" or \"all\"");
    }
    const Lock lock(m_mutex);
    if (all || part == "faults") {
        m_faults.clear();
    }
    if (all) {
        addStartScenario();
    }
    if (all || part == "log") {
        m_log.clear();
    }
    if (all || part == "state") {
        plantSeed(m_options.seed);
    }
}

Json Simulator::clock() {
    const Lock lock(m_mutex);
    return Json{{"now", utcTime(now())}, {"advancedMs", m_advanced.count()}};
}

void Simulator::advanceClock(const Json& step) {
    const JsonNode node(step, "the request");
    node.only({"advanceMs"});
    node.member("advanceMs");
    const Milliseconds time(node.number("advanceMs", 0, kMaxAdvance));
    std::function<void(Milliseconds)> skip;
    {
        const Lock lock(m_mutex);
        m_advanced += time;
        skip = m_skip;
    }
    if (skip) {
        skip(time);
    }
}

void Simulator::onAdvance(std::function<void(Milliseconds)> skip) {
    const Lock lock(m_mutex);
    m_skip = std::move(skip);
}

Json Simulator::verify(const Json& expectations) {
    const JsonNode node(expectations, "the expectations");
    ExchangeFilter filter;
    filter.since = static_cast<std::uint64_t>(node.number("since", 0));
    std::vector<Exchange> calls;
    bool whole = false;
    {
        const Lock lock(m_mutex);
        calls = m_log.select(filter);
        whole = m_log.isWholeSince(filter.since);
    }
    return sim::verify(node, calls, whole);
}

Json Simulator::recording(const ExchangeFilter& filter) {
    std::vector<Exchange> calls;
    {
        const Lock lock(m_mutex);
        calls = m_log.select(filter);
    }
    return recordingOf(calls);
}

}  // namespace sim
