#include "sim/verify/verification.h"

#include <algorithm>
#include <chrono>
#include <set>
#include <tuple>

#include "sim/verify/clusterRules.h"
#include "sim/verify/expectation.h"

namespace sim {

namespace {

constexpr std::size_t kMaxNearest = 3;
constexpr std::string_view kAllRules = "all";
constexpr std::string_view kSecret = "***";

using Calls = std::vector<Exchange>;

/// An expectation and the calls that it was met by, by their places.
struct Meeting {
    Expectation expected;
    std::vector<std::size_t> calls;
    std::size_t extra = 0;              // calls that fit and came beyond what is expected
    std::chrono::milliseconds took{0};  // until enough of them had come
};

bool fits(const Meeting& meeting, const Exchange& call) {
    return differences(meeting.expected, call).empty();
}

void meetAnywhere(std::vector<Meeting>& meetings, const Calls& calls) {
    for (Meeting& meeting : meetings) {
        for (std::size_t i = 0; i < calls.size(); ++i) {
            if (fits(meeting, calls[i])) {
                meeting.calls.push_back(i);
            }
        }
    }
}

/// Each expectation takes the calls that fit it behind those of the one before: as many as it may
/// have, and no more once it has enough and a call comes that the next one waits for.
void meetInOrder(std::vector<Meeting>& meetings, const Calls& calls) {
    std::size_t from = 0;
    std::set<std::size_t> taken;
    for (std::size_t m = 0; m < meetings.size(); ++m) {
        Meeting& meeting = meetings[m];
        const std::size_t most = meeting.expected.atMost.value_or(calls.size());
        for (std::size_t i = from; i < calls.size() && meeting.calls.size() < most; ++i) {
            const bool enough = meeting.calls.size() >= meeting.expected.atLeast;
            if (enough && m + 1 < meetings.size() && fits(meetings[m + 1], calls[i])) {
                break;
            }
            if (fits(meeting, calls[i])) {
                meeting.calls.push_back(i);
                taken.insert(i);
            }
        }
        from = meeting.calls.empty() ? from : meeting.calls.back() + 1;
    }
    // What nobody took came out of order, or too often.
    for (Meeting& meeting : meetings) {
        for (std::size_t i = 0; i < calls.size() && meeting.expected.atMost; ++i) {
            meeting.extra += !taken.contains(i) && fits(meeting, calls[i]) ? 1 : 0;
        }
    }
}

/// The time from the call before, or from the first one, until enough calls had come.
void measure(std::vector<Meeting>& meetings, const Calls& calls, bool ordered) {
    auto before = calls.empty() ? std::chrono::system_clock::time_point() : calls.front().time;
    for (Meeting& meeting : meetings) {
        const std::size_t needed = std::max<std::size_t>(meeting.expected.atLeast, 1);
        if (meeting.calls.size() >= needed) {
            const auto at = calls[meeting.calls[needed - 1]].time;
            meeting.took = std::chrono::duration_cast<std::chrono::milliseconds>(at - before);
            before = ordered ? calls[meeting.calls.back()].time : before;
        }
    }
}

/// What is wrong, or nothing.
std::string problemOf(const Meeting& meeting, bool ordered) {
    const Expectation& expected = meeting.expected;
    const std::size_t count = meeting.calls.size();
    if (count < expected.atLeast || (expected.atMost && count + meeting.extra > *expected.atMost)) {
        return "came " + timesText(count) + (ordered ? " in its place" : "") +
               (meeting.extra > 0 ? " and " + timesText(meeting.extra) + " elsewhere" : "") +
               ", expected " + countTextOf(expected);
    }
    if (expected.within && count > 0 && meeting.took > *expected.within) {
        return "came after " + std::to_string(meeting.took.count()) + " ms, expected within " +
               std::to_string(expected.within->count()) + " ms";
    }
    return "";
}

Json callJson(const Exchange& call, const std::vector<std::string>& differs) {
    return Json{{"id", call.id}, {"summary", summaryLine(call)}, {"differs", differs}};
}

/// The calls that come closest to what is expected and are not among those that met it.
Json nearest(const Meeting& meeting, const Calls& calls) {
    struct Candidate {
        bool otherCommand;
        std::size_t distance;
        std::size_t place;
        std::vector<std::string> differs;
    };
    std::vector<Candidate> candidates;
    for (std::size_t i = 0; i < calls.size(); ++i) {
        if (std::find(meeting.calls.begin(), meeting.calls.end(), i) != meeting.calls.end()) {
            continue;
        }
        std::vector<std::string> differs = differences(meeting.expected, calls[i]);
        const bool otherCommand = !differs.empty() && differs[0].starts_with("the command is");
        const std::size_t distance = differs.size();
        if (differs.empty()) {
            differs.emplace_back("it fits, and came out of order or too often");
        }
        candidates.push_back({otherCommand, distance, i, std::move(differs)});
    }
    std::stable_sort(candidates.begin(), candidates.end(), [](const auto& left, const auto& right) {
        return std::tie(left.otherCommand, left.distance) <
               std::tie(right.otherCommand, right.distance);
    });
    Json out = Json::array();
    for (const Candidate& candidate : candidates) {
        // Calls of another command say nothing once there are some of the same.
        if (out.size() == kMaxNearest ||
            (candidate.otherCommand && !candidates.front().otherCommand)) {
            break;
        }
        out.push_back(callJson(calls[candidate.place], candidate.differs));
    }
    return out;
}

/// Where calls came too often or too late, they themselves are the nearest.
Json callsOf(const Meeting& meeting, const Calls& calls) {
    Json out = Json::array();
    for (const std::size_t place : meeting.calls) {
        if (out.size() < kMaxNearest) {
            out.push_back(callJson(calls[place], {"it fits"}));
        }
    }
    return out;
}

Json result(const std::string& name, std::size_t count, const std::string& problem, Json nearest) {
    return Json{{"name", name},
                {"passed", problem.empty()},
                {"count", count},
                {"problem", problem},
                {"nearest", std::move(nearest)}};
}

void addExpectations(const JsonNode& file, const Calls& calls, Json& results) {
    const bool ordered = file.flag("ordered", false);
    std::vector<Meeting> meetings;
    for (const JsonNode& entry : file.list("expect")) {
        meetings.push_back({expectationFromJson(entry), {}, 0, {}});
    }
    ordered ? meetInOrder(meetings, calls) : meetAnywhere(meetings, calls);
    measure(meetings, calls, ordered);
    for (const Meeting& meeting : meetings) {
        const std::string problem = problemOf(meeting, ordered);
        const bool enough = meeting.calls.size() >= meeting.expected.atLeast && meeting.extra == 0;
        results.push_back(
            result(std::to_string(results.size() + 1) + ": " + textOf(meeting.expected),
                   meeting.calls.size(), problem,
                   problem.empty() ? Json::array()
                                   : (enough ? callsOf(meeting, calls) : nearest(meeting, calls))));
    }
    if (!file.flag("nothingElse", false)) {
        return;
    }
    Json others = Json::array();
    std::size_t count = 0;
    for (const Exchange& call : calls) {
        if (std::none_of(meetings.begin(), meetings.end(),
                         [&](const Meeting& meeting) { return fits(meeting, call); })) {
            ++count;
            if (others.size() < kMaxNearest) {
                others.push_back(callJson(call, {"nothing expects it"}));
            }
        }
    }
    results.push_back(result("nothing else", count,
                             count == 0 ? "" : std::to_string(count) + " call(s) nobody expects",
                             std::move(others)));
}

void addRule(const ClusterRule& rule, const Calls& calls, Json& results) {
    Json broken = Json::array();
    std::size_t count = 0;
    for (const Exchange& call : calls) {
        if (std::find(call.brokenRules.begin(), call.brokenRules.end(), rule.name) !=
            call.brokenRules.end()) {
            ++count;
            if (broken.size() < kMaxNearest) {
                broken.push_back(callJson(call, {}));
            }
        }
    }
    results.push_back(result(
        "rule " + std::string(rule.name) + ": " + std::string(rule.text), count,
        count == 0 ? "" : "broken by " + std::to_string(count) + " call(s)", std::move(broken)));
}

void addRules(const JsonNode& file, const Calls& calls, Json& results) {
    const std::vector<std::string> names = file.texts("rules");
    const auto wants = [&](std::string_view name) {
        return std::find(names.begin(), names.end(), name) != names.end();
    };
    for (const std::string& name : names) {
        const auto rules = clusterRules();
        if (name != kAllRules && std::none_of(rules.begin(), rules.end(), [&](const auto& rule) {
                return rule.name == name;
            })) {
            file.member("rules").fail("has no rule \"" + name + "\" to offer");
        }
    }
    for (const ClusterRule& rule : clusterRules()) {
        if (wants(rule.name) || wants(kAllRules)) {
            addRule(rule, calls, results);
        }
    }
}

/// What a recording keeps of a call: all that can be compared, and no secret.
Json expectationOf(const Exchange& call) {
    Json members = Json::object();
    for (const auto& [name, text] : call.members) {
        if (text != kSecret) {
            members[name] = text;
        }
    }
    return Json{{"command", call.label},
                {"members", std::move(members)},
                {"outcome", call.outcome.substr(0, call.outcome.find(':'))},
                {"exactly", 1}};
}

}  // namespace

Json verify(const JsonNode& expectations, const std::vector<Exchange>& calls, bool complete) {
    expectations.only({"description", "ordered", "nothingElse", "since", "expect", "rules"});
    if (!expectations.has("expect") && !expectations.has("rules")) {
        expectations.fail("needs \"expect\" or \"rules\"");
    }
    Json results = Json::array();
    addExpectations(expectations, calls, results);
    addRules(expectations, calls, results);
    const bool passed =
        complete && std::all_of(results.begin(), results.end(),
                                [](const Json& one) { return one["passed"].get<bool>(); });
    return Json{{"passed", passed},
                {"calls", calls.size()},
                {"complete", complete},
                {"results", std::move(results)}};
}

Json recordingOf(const std::vector<Exchange>& calls) {
    Json expect = Json::array();
    for (const Exchange& call : calls) {
        if (call.label.find("::") == std::string::npos) {
            continue;  // a request that could not be read names no command
        }
        Json entry = expectationOf(call);
        Json counted = expect.empty() ? Json() : expect.back();
        if (!counted.is_null()) {
            counted["exactly"] = 1;
        }
        if (counted == entry) {
            expect.back()["exactly"] = expect.back()["exactly"].get<int>() + 1;
        } else {
            expect.push_back(std::move(entry));
        }
    }
    return Json{{"ordered", true}, {"nothingElse", true}, {"expect", std::move(expect)}};
}

}  // namespace sim
