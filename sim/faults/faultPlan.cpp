#include <algorithm>
#include <stdexcept>

#include "sim/faults/faults.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/command.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

constexpr int hour = 3'600'000;  // in milliseconds; nothing waits longer
constexpr int mostCalls = 1'000'000'000;
constexpr int mostBytes = 64 * 1024 * 1024;

struct NumberMember {
    const char* name;
    int FaultRule::*member;
    int most;
};

struct TextMember {
    const char* name;
    std::string FaultRule::*member;
};

constexpr NumberMember numbers[] = {
    {"count", &FaultRule::count, mostCalls},      {"after", &FaultRule::after, mostCalls},
    {"delayMs", &FaultRule::delayMs, hour},       {"chunk", &FaultRule::chunk, mostBytes},
    {"intervalMs", &FaultRule::intervalMs, hour}, {"bytes", &FaultRule::bytes, mostBytes},
};

constexpr TextMember texts[] = {
    {"command", &FaultRule::command},   {"fault", &FaultRule::fault},
    {"code", &FaultRule::code},         {"error", &FaultRule::error},
    {"document", &FaultRule::document}, {"localized", &FaultRule::localized},
    {"detail", &FaultRule::detail},
};

int numberIn(const Json& json, const NumberMember& row, int otherwise) {
    if (!json.contains(row.name)) {
        return otherwise;
    }
    const Json& value = json[row.name];
    if (!value.is_number_integer() || value < 0 || value > row.most) {
        throw std::runtime_error(std::string("\"") + row.name + "\" has to be a number from 0 to " +
                                 std::to_string(row.most));
    }
    return value.get<int>();
}

std::string textIn(const Json& json, const TextMember& row, const std::string& otherwise) {
    if (json.contains(row.name) && !json[row.name].is_string()) {
        throw std::runtime_error(std::string("\"") + row.name + "\" has to be a text");
    }
    return json.value(row.name, otherwise);
}

constexpr std::string_view callerMark = "{hccId}";

void replaceAll(std::string& text, std::string_view mark, const std::string& by) {
    for (auto at = text.find(mark); at != std::string::npos; at = text.find(mark, at + by.size())) {
        text.replace(at, mark.size(), by);
    }
}

bool fits(const FaultRule& rule, const std::string& object, const std::string& command) {
    return rule.command == "*" || rule.command == command ||
           rule.command == commandLabel(object, command);
}

/// A rule for a command that nobody sends would wait for ever.
void checkCommand(const std::string& command) {
    if (command.empty()) {
        throw std::runtime_error("a fault needs a \"command\" (\"*\" for every command)");
    }
    const std::vector<std::string> names = commandNames();
    if (command != "*" && std::none_of(names.begin(), names.end(), [&](const std::string& name) {
            return name == command || name.ends_with("::" + command);
        })) {
        throw std::runtime_error("there is no command \"" + command + "\"");
    }
}

}  // namespace

FaultRule ruleFromJson(const Json& json) {
    onlyMembers(json, "a fault",
                {"command", "fault", "count", "after", "code", "error", "localized", "detail",
                 "document", "delayMs", "chunk", "intervalMs", "bytes"});
    FaultRule rule;
    for (const NumberMember& row : numbers) {
        rule.*row.member = numberIn(json, row, rule.*row.member);
    }
    for (const TextMember& row : texts) {
        rule.*row.member = textIn(json, row, rule.*row.member);
    }
    checkCommand(rule.command);
    faultNamed(rule.fault);
    return rule;
}

Json toJson(const FaultRule& rule) {
    Json out{{"id", rule.id}};
    for (const TextMember& row : texts) {
        out[row.name] = rule.*row.member;
    }
    for (const NumberMember& row : numbers) {
        out[row.name] = rule.*row.member;
    }
    return out;
}

void nameCaller(FaultRule& rule, const std::string& hccId) {
    replaceAll(rule.error, callerMark, hccId);
    replaceAll(rule.document, callerMark, escapeXml(hccId));
}

void FaultPlan::add(FaultRule rule) {
    rule.id = ++m_lastId;
    m_rules.push_back(std::move(rule));
}

void FaultPlan::addScenario(const Json& scenario) {
    onlyMembers(scenario, "a scenario", {"faults"});
    if (!scenario.contains("faults") || !scenario["faults"].is_array()) {
        throw std::runtime_error("a scenario needs a list \"faults\"");
    }
    std::vector<FaultRule> rules;
    for (const Json& rule : scenario["faults"]) {
        rules.push_back(ruleFromJson(rule));
    }
    for (FaultRule& rule : rules) {
        add(std::move(rule));
    }
}

bool FaultPlan::remove(std::uint64_t id) {
    return std::erase_if(m_rules, [id](const FaultRule& rule) { return rule.id == id; }) > 0;
}

bool FaultPlan::take(const std::string& object, const std::string& command, FaultRule& rule) {
    for (auto candidate = m_rules.begin(); candidate != m_rules.end(); ++candidate) {
        if (!fits(*candidate, object, command)) {
            continue;
        }
        if (candidate->after > 0) {
            --candidate->after;
            continue;
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
