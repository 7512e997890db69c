#include "sim/verify/expectation.h"

#include "sim/protocol/command.h"

namespace sim {

namespace {

constexpr std::int64_t kMaxCount = 1'000'000;
constexpr std::int64_t kMaxWait = std::int64_t{24} * 3'600'000;  // milliseconds

std::string quoted(const std::string& text) {
    return "\"" + text + "\"";
}

MemberExpectation memberFromJson(const JsonNode& members, const std::string& name) {
    const JsonNode value = members.member(name.c_str());
    if (value.json().is_null()) {
        return {name, MemberExpectation::Kind::absent, ""};
    }
    if (value.json().is_object()) {
        value.only({"like"});
        return {name, MemberExpectation::Kind::like, value.text("like")};
    }
    return {name, MemberExpectation::Kind::exact, members.text(name.c_str(), "")};
}

std::string difference(const MemberExpectation& expected, const Exchange& call) {
    const auto found = call.members.find(expected.name);
    const bool absent = found == call.members.end();
    switch (expected.kind) {
        case MemberExpectation::Kind::absent:
            return absent ? "" : expected.name + " is there, and is not expected";
        case MemberExpectation::Kind::exact:
            if (!absent && found->second == expected.text) {
                return "";
            }
            break;
        case MemberExpectation::Kind::like:
            if (!absent && isLike(found->second, expected.text)) {
                return "";
            }
            break;
    }
    const bool like = expected.kind == MemberExpectation::Kind::like;
    return expected.name + (absent ? " is missing" : " is " + quoted(found->second)) +
           (like ? ", not like " : ", not ") + quoted(expected.text);
}

}  // namespace

bool isLike(std::string_view text, std::string_view pattern) {
    // Goes back to the last "*" only, so that no pattern takes longer than text times pattern.
    std::size_t at = 0;
    std::size_t in = 0;
    std::size_t star = std::string_view::npos;
    std::size_t resume = 0;
    while (at < text.size()) {
        if (in < pattern.size() && pattern[in] == '*') {
            star = in++;
            resume = at;
        } else if (in < pattern.size() && (pattern[in] == '?' || pattern[in] == text[at])) {
            ++in;
            ++at;
        } else if (star != std::string_view::npos) {
            in = star + 1;
            at = ++resume;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', in) == std::string_view::npos;
}

Expectation expectationFromJson(const JsonNode& json) {
    json.only(
        {"command", "cluster", "outcome", "members", "exactly", "atLeast", "atMost", "withinMs"});
    Expectation out;
    out.command = json.text("command");
    checkCommand(json.member("command"), out.command);
    out.cluster = json.text("cluster", "");
    out.outcome = json.text("outcome", "");
    if (json.has("members")) {
        const JsonNode members = json.member("members");
        members.has("");  // has to be an object
        for (const auto& [name, value] : members.json().items()) {
            out.members.push_back(memberFromJson(members, name));
        }
    }
    if (json.has("exactly") && (json.has("atLeast") || json.has("atMost"))) {
        json.fail("has \"exactly\" and \"atLeast\" or \"atMost\": choose");
    }
    const auto number = [&](const char* name, std::int64_t fallback) {
        return static_cast<std::size_t>(json.number(name, fallback, kMaxCount));
    };
    if (json.has("atLeast") || json.has("atMost")) {
        out.atLeast = number("atLeast", 0);
        out.atMost = json.has("atMost") ? std::optional(number("atMost", 0)) : std::nullopt;
        if (out.atMost && *out.atMost < out.atLeast) {
            json.fail("expects fewer calls at most than at least");
        }
    } else {
        out.atLeast = number("exactly", 1);
        out.atMost = out.atLeast;
    }
    if (json.has("withinMs")) {
        out.within = std::chrono::milliseconds(json.number("withinMs", 0, kMaxWait));
    }
    return out;
}

std::vector<std::string> differences(const Expectation& expected, const Exchange& call) {
    std::vector<std::string> out;
    if (!commandMatches(expected.command, call.label)) {
        out.push_back("the command is " + call.label + ", not " + expected.command);
    }
    if (!expected.cluster.empty() && clusterOf(call) != expected.cluster) {
        out.push_back("the cluster is " + quoted(clusterOf(call)) + ", not " +
                      quoted(expected.cluster));
    }
    for (const MemberExpectation& member : expected.members) {
        if (std::string point = difference(member, call); !point.empty()) {
            out.push_back(std::move(point));
        }
    }
    if (!call.outcome.starts_with(expected.outcome)) {
        out.push_back("the outcome is " + quoted(call.outcome) + ", not " +
                      quoted(expected.outcome));
    }
    return out;
}

std::string textOf(const Expectation& expected) {
    std::string out = expected.command;
    if (!expected.cluster.empty()) {
        out += " of cluster " + quoted(expected.cluster);
    }
    for (const MemberExpectation& member : expected.members) {
        out += &member == expected.members.data() ? " with " : ", ";
        out += (member.kind == MemberExpectation::Kind::absent ? "no " : "") + member.name;
        if (member.kind != MemberExpectation::Kind::absent) {
            out += (member.kind == MemberExpectation::Kind::like ? " like " : " ") +
                   quoted(member.text);
        }
    }
    return out + (expected.outcome.empty() ? "" : ", outcome " + quoted(expected.outcome));
}

std::string timesText(std::size_t count) {
    return count == 1 ? "once" : std::to_string(count) + " times";
}

std::string countTextOf(const Expectation& expected) {
    if (expected.atMost == expected.atLeast) {
        return expected.atLeast == 0 ? "never" : "exactly " + timesText(expected.atLeast);
    }
    if (!expected.atMost) {
        return timesText(expected.atLeast) + " or more";
    }
    return expected.atLeast == 0 ? timesText(*expected.atMost) + " at most"
                                 : std::to_string(expected.atLeast) + " to " +
                                       std::to_string(*expected.atMost) + " times";
}

}  // namespace sim
