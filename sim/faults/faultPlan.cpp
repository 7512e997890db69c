#include "sim/faults/faults.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/command.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

constexpr int kMaxWait = 3'600'000;  // in milliseconds; nothing waits longer
constexpr int kMaxCalls = 1'000'000'000;
constexpr int kMaxBytes = 64 * 1024 * 1024;

struct NumberMember {
    const char* name;
    int FaultRule::*member;
    int max;
};

struct TextMember {
    const char* name;
    std::string FaultRule::*member;
};

constexpr NumberMember kNumbers[] = {
    {"count", &FaultRule::count, kMaxCalls},          {"after", &FaultRule::after, kMaxCalls},
    {"delayMs", &FaultRule::delayMs, kMaxWait},       {"chunk", &FaultRule::chunk, kMaxBytes},
    {"intervalMs", &FaultRule::intervalMs, kMaxWait}, {"bytes", &FaultRule::bytes, kMaxBytes},
    {"forMs", &FaultRule::forMs, kMaxWait},
};

constexpr TextMember kTexts[] = {
    {"command", &FaultRule::command},   {"fault", &FaultRule::fault},
    {"code", &FaultRule::code},         {"error", &FaultRule::error},
    {"document", &FaultRule::document}, {"localized", &FaultRule::localized},
    {"detail", &FaultRule::detail},
};

constexpr std::string_view kCallerMark = "{hccId}";

void replaceAll(std::string& text, std::string_view mark, const std::string& by) {
    for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size())) {
        text.replace(at, mark.size(), by);
    }
}

bool matches(const FaultRule& rule, const std::string& object, const std::string& command) {
    return commandMatches(rule.command, commandLabel(object, command));
}

}  // namespace

FaultRule ruleFromJson(const JsonNode& json) {
    FaultRule rule;
    std::vector<std::string_view> names;
    for (const TextMember& row : kTexts) {
        names.emplace_back(row.name);
    }
    for (const NumberMember& row : kNumbers) {
        names.emplace_back(row.name);
    }
    json.only(names);
    for (const NumberMember& row : kNumbers) {
        rule.*row.member = static_cast<int>(json.number(row.name, rule.*row.member, row.max));
    }
    for (const TextMember& row : kTexts) {
        rule.*row.member = json.text(row.name, rule.*row.member);
    }
    json.text("command");
    json.text("fault");
    // A rule for a command that nobody sends would wait for ever.
    checkCommand(json.member("command"), rule.command);
    if (findFault(rule.fault) == nullptr) {
        json.member("fault").fail("has to name a fault: there is no fault \"" + rule.fault + "\"");
    }
    return rule;
}

Json toJson(const FaultRule& rule) {
    Json out{{"id", rule.id}};
    for (const TextMember& row : kTexts) {
        out[row.name] = rule.*row.member;
    }
    for (const NumberMember& row : kNumbers) {
        out[row.name] = rule.*row.member;
    }
    return out;
}

void nameCaller(FaultRule& rule, const std::string& hccId) {
    replaceAll(rule.error, kCallerMark, hccId);
    replaceAll(rule.document, kCallerMark, escapeXml(hccId));
}

const FaultRule& FaultPlan::add(FaultRule rule) {
    rule.id = ++m_lastId;
    m_rules.push_back(std::move(rule));
    return m_rules.back();
}

void FaultPlan::addScenario(const JsonNode& scenario) {
    // The texts are for those who read the file.
    scenario.only({"description", "goodCluster", "faults"});
    scenario.member("faults");
    std::vector<FaultRule> rules;
    for (const JsonNode& rule : scenario.list("faults")) {
        rules.push_back(ruleFromJson(rule));
    }
    for (FaultRule& rule : rules) {
        add(std::move(rule));
    }
}

bool FaultPlan::remove(std::uint64_t id) {
    return std::erase_if(m_rules, [id](const FaultRule& rule) { return rule.id == id; }) > 0;
}

void FaultPlan::dropEnded(Instant now) {
    std::erase_if(m_rules, [now](const FaultRule& rule) { return rule.ends <= now; });
}

const std::vector<FaultRule>& FaultPlan::rules(Instant now) {
    dropEnded(now);
    return m_rules;
}

bool FaultPlan::take(const std::string& object, const std::string& command, Instant now,
                     FaultRule& rule) {
    dropEnded(now);
    for (auto candidate = m_rules.begin(); candidate != m_rules.end(); ++candidate) {
        if (!matches(*candidate, object, command)) {
            continue;
        }
        if (candidate->after > 0) {
            --candidate->after;
            continue;
        }
        if (candidate->forMs > 0 && candidate->ends == Instant::max()) {
            candidate->ends = now + std::chrono::milliseconds(candidate->forMs);
        }
        rule = *candidate;
        if (candidate->count > 0 && --candidate->count == 0) {
            m_rules.erase(candidate);
        }
        return true;
    }
    return false;
}

}  // namespace sim
