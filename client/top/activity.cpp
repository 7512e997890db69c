#include "client/top/activity.h"

#include <array>
#include <cmath>
#include <iomanip>
#include <numeric>
#include <sstream>

#include "apiMgmt/common/text/safeText.h"
#include "client/top/metrics.h"

namespace client {

namespace {

constexpr double kMilliseconds = 1000;

struct Column {
    const char* heading;
    const char* outcome;
};

// What the table shows of the outcomes. How to add one: a row.
constexpr std::array kOutcomeColumns = {
    Column{"answered", "answered"},
    Column{"array", "refused_by_array"},
    Column{"service", "refused_by_service"},
    Column{"silent", "no_answer_of_array"},
    Column{"failed", "failed"},
};
constexpr int kNameWidth = 25;
constexpr int kColumnWidth = 9;

// What was counted between two looks; the whole count when it began anew.
template <class Key>
std::map<Key, double> growth(const std::map<Key, double>& before,
                             const std::map<Key, double>& now) {
    std::map<Key, double> grown = now;
    for (const auto& [key, value] : before) {
        const auto found = grown.find(key);
        if (found == grown.end() || found->second < value) {
            return now;
        }
        found->second -= value;
    }
    return grown;
}

// The value below which `share` of the calls lie, in milliseconds, guessed within its bucket as
// monitoring systems do; null without calls.
Json percentile(const std::map<double, double>& buckets, double share) {
    const double calls = buckets.empty() ? 0 : buckets.rbegin()->second;
    double lower = 0;
    double below = 0;
    for (const auto& [upper, upTo] : buckets) {
        if (calls > 0 && upTo >= share * calls) {
            const double part = (share * calls - below) / (upTo - below);
            return (std::isinf(upper) ? lower : lower + (upper - lower) * part) * kMilliseconds;
        }
        lower = upper;
        below = upTo;
    }
    return nullptr;
}

Json figures(const std::map<std::string, double>& outcomes,
             const std::map<double, double>& buckets) {
    const double calls =
        std::accumulate(outcomes.begin(), outcomes.end(), 0.0,
                        [](double sum, const auto& outcome) { return sum + outcome.second; });
    return {{"calls", calls},
            {"outcomes", outcomes},
            {"p50Milliseconds", percentile(buckets, 0.5)},
            {"p99Milliseconds", percentile(buckets, 0.99)}};
}

Json operationActivity(const OperationCounts& before, const OperationCounts& now, double seconds) {
    Json recent =
        figures(growth(before.outcomes, now.outcomes), growth(before.buckets, now.buckets));
    recent["callsPerSecond"] = recent["calls"].get<double>() / seconds;
    return {{"callsInProgress", now.inProgress},
            {"recent", recent},
            {"sinceStart", figures(now.outcomes, now.buckets)}};
}

Json serviceActivity(const ServiceCounts& before, const ServiceCounts& now, double seconds) {
    Json operations = Json::object();
    double rate = 0;
    double inProgress = 0;
    for (const auto& [name, counts] : now.operations) {
        const auto earlier = before.operations.find(name);
        operations[name] = operationActivity(
            earlier == before.operations.end() ? OperationCounts() : earlier->second, counts,
            seconds);
        rate += operations[name]["recent"]["callsPerSecond"].get<double>();
        inProgress += counts.inProgress;
    }
    return {{"callsPerSecond", rate},
            {"callsInProgress", inProgress},
            {"callsWaitingForArray", now.waitingForArray},
            {"oldestCallSeconds", now.oldestSeconds},
            {"arrayAnswers", now.arrayAnswers},
            {"operations", operations}};
}

std::string cell(const Json& value, int decimals) {
    std::ostringstream text;
    text << std::setw(kColumnWidth);
    if (value.is_null()) {
        text << "-";
    } else {
        text << std::fixed << std::setprecision(decimals) << value.get<double>();
    }
    return text.str();
}

std::string row(const std::string& name, const Json& operation) {
    const Json& recent = operation["recent"];
    std::ostringstream line;
    line << std::left << std::setw(kNameWidth) << text::oneLine(name)
         << cell(recent["callsPerSecond"], 1) << cell(operation["callsInProgress"], 0)
         << cell(recent["p50Milliseconds"], 1) << cell(recent["p99Milliseconds"], 1);
    for (const Column& column : kOutcomeColumns) {
        line << cell(recent["outcomes"].value(column.outcome, 0.0), 0);
    }
    return line.str() + "\n";
}

std::string heading() {
    std::ostringstream line;
    line << std::left << std::setw(kNameWidth) << "operation" << std::right;
    for (const char* name : {"calls/s", "at work", "p50 ms", "p99 ms"}) {
        line << std::setw(kColumnWidth) << name;
    }
    for (const Column& column : kOutcomeColumns) {
        line << std::setw(kColumnWidth) << column.heading;
    }
    return line.str() + "\n";
}

}  // namespace

Snapshot readSnapshot(std::string_view text) {
    Snapshot snapshot;
    for (const Sample& sample : parseMetrics(text)) {
        if (!sample.name.starts_with("san_") || !sample.labels.contains("location")) {
            continue;
        }
        ServiceCounts& service = snapshot[sample.label("location")];
        const std::string operation = sample.label("operation");
        if (sample.name == "san_calls_total") {
            service.operations[operation].outcomes[sample.label("outcome")] += sample.value;
        } else if (sample.name == "san_call_duration_seconds_bucket") {
            service.operations[operation].buckets[parseNumber(sample.label("le"))] += sample.value;
        } else if (sample.name == "san_calls_in_progress") {
            service.operations[operation].inProgress += sample.value;
        } else if (sample.name == "san_oldest_call_seconds") {
            service.oldestSeconds = sample.value;
        } else if (sample.name == "san_calls_waiting_for_array") {
            service.waitingForArray = sample.value;
        } else if (sample.name == "san_array_answers") {
            service.arrayAnswers = sample.value != 0;
        }
    }
    return snapshot;
}

Json activityOf(const Snapshot& before, const Snapshot& now, double seconds) {
    Json services = Json::object();
    for (const auto& [location, counts] : now) {
        const auto earlier = before.find(location);
        services[location] = serviceActivity(
            earlier == before.end() ? ServiceCounts() : earlier->second, counts, seconds);
    }
    return {{"seconds", seconds}, {"services", services}};
}

std::string activityTable(const Json& activity) {
    std::ostringstream text;
    for (const auto& [location, service] : activity["services"].items()) {
        text << std::fixed << std::setprecision(1) << text::oneLine(location) << "  "
             << service["callsPerSecond"].get<double>() << " calls/s, " << std::setprecision(0)
             << service["callsInProgress"].get<double>() << " at work, "
             << service["callsWaitingForArray"].get<double>() << " waiting for the array, oldest "
             << std::setprecision(1) << service["oldestCallSeconds"].get<double>() << " s"
             << (service["arrayAnswers"].get<bool>() ? "" : "; THE ARRAY DOES NOT ANSWER") << '\n'
             << heading();
        for (const auto& [name, operation] : service["operations"].items()) {
            text << row(name, operation);
        }
        text << '\n';
    }
    return text.str();
}

}  // namespace client
