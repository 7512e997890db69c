#include "sim/simctl/verdictText.h"

#include "apiMgmt/common/text/safeText.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

constexpr const char* kIncomplete =
    "older calls were dropped: the simulator keeps the last 1000, so this is no verdict";

std::string lineOf(const Json& value, const char* name) {
    return text::oneLine(value.value(name, ""));
}

/// The nearest calls, each on a line and each difference on one below it.
std::string nearestText(const Json& result, const std::string& indent) {
    std::string out;
    for (const Json& call : result["nearest"]) {
        out += indent + lineOf(call, "summary") + "\n";
        for (const Json& point : call["differs"]) {
            out += indent + "  - " + text::oneLine(point.get<std::string>()) + "\n";
        }
    }
    return out;
}

std::string attribute(const std::string& value) {
    std::string out;
    for (const char c : escapeXml(value)) {
        out += c == '"' ? "&quot;" : std::string(1, c);
    }
    return out;
}

std::string testCase(const std::string& suite, const std::string& name, const std::string& problem,
                     const std::string& details) {
    const std::string start =
        "  <testcase classname=\"" + attribute(suite) + "\" name=\"" + attribute(name) + "\"";
    return problem.empty() ? start + "/>\n"
                           : start + ">\n    <failure message=\"" + attribute(problem) + "\">" +
                                 escapeXml(details) + "</failure>\n  </testcase>\n";
}

}  // namespace

std::string verdictText(const Json& verdict) {
    std::string out;
    for (const Json& result : verdict["results"]) {
        const bool passed = result.value("passed", false);
        out += (passed ? "ok    " : "FAIL  ") + lineOf(result, "name") +
               (passed ? "" : ": " + lineOf(result, "problem")) + "\n";
        if (!passed && !result["nearest"].empty()) {
            out += "      calls to look at:\n" + nearestText(result, "        ");
        }
    }
    if (!verdict.value("complete", false)) {
        out += std::string("FAIL  ") + kIncomplete + "\n";
    }
    return out + (verdict.value("passed", false) ? "passed" : "failed") + ", " +
           std::to_string(verdict.value("calls", 0)) + " calls looked at\n";
}

std::string verdictJunit(const Json& verdict, const std::string& suite) {
    std::string cases;
    std::size_t failures = 0;
    for (const Json& result : verdict["results"]) {
        const bool passed = result.value("passed", false);
        failures += passed ? 0 : 1;
        cases += testCase(suite, result.value("name", ""), passed ? "" : lineOf(result, "problem"),
                          "\n" + nearestText(result, ""));
    }
    const bool complete = verdict.value("complete", false);
    failures += complete ? 0 : 1;
    cases += testCase(suite, "all calls are known", complete ? "" : kIncomplete, "");
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuite name=\"" + attribute(suite) +
           "\" tests=\"" + std::to_string(verdict["results"].size() + 1) + "\" failures=\"" +
           std::to_string(failures) + "\">\n" + cases + "</testsuite>\n";
}

}  // namespace sim
