#include "client/report/callStatistics.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <iomanip>
#include <sstream>

#include "client/report/report.h"

namespace client {

namespace {

constexpr double kMilliseconds = 1000;

struct Share {
    const char* name;
    double share;
};

// How to add one: a row; report and table follow.
constexpr std::array kShares = {Share{"p50", 0.5}, Share{"p90", 0.9}, Share{"p99", 0.99},
                                Share{"max", 1}};
constexpr std::size_t kMaxShownFailures = 10;  // Shown to people.
constexpr int kNameWidth = 24;
constexpr int kColumnWidth = 9;

std::string heading() {
    std::ostringstream line;
    line << std::left << std::setw(kNameWidth) << "latency in ms" << std::right
         << std::setw(kColumnWidth) << "calls" << std::setw(kColumnWidth) << "failed";
    for (const Share& share : kShares) {
        line << std::setw(kColumnWidth) << share.name;
    }
    return line.str() + "\n";
}

std::string row(const std::string& name, const Json& calls) {
    std::ostringstream line;
    line << std::left << std::setw(kNameWidth) << name << std::right << std::setw(kColumnWidth)
         << calls["calls"].get<std::size_t>() << std::setw(kColumnWidth)
         << calls["failed"].get<std::size_t>() << std::fixed << std::setprecision(2);
    for (const Share& share : kShares) {
        line << std::setw(kColumnWidth) << calls[share.name].get<double>();
    }
    return line.str() + "\n";
}

}  // namespace

double CallStatistics::percentile(const std::vector<double>& sorted, double share) {
    const auto rank = std::ceil(share * static_cast<double>(sorted.size()));
    return sorted[static_cast<std::size_t>(std::max(rank, 1.0)) - 1];
}

void CallStatistics::add(const std::string& operation, const Outcome& outcome) {
    Calls& calls = m_calls[operation];
    calls.seconds.push_back(outcome.seconds);
    if (!outcome.isDone()) {
        ++calls.failed;
        ++m_failures[operation + ": " + failureText(outcome)];
    }
}

void CallStatistics::Calls::append(const Calls& other) {
    seconds.insert(seconds.end(), other.seconds.begin(), other.seconds.end());
    failed += other.failed;
}

Json CallStatistics::latencies(Calls calls) {
    Json result = {{"calls", calls.seconds.size()}, {"failed", calls.failed}};
    std::sort(calls.seconds.begin(), calls.seconds.end());
    for (const Share& share : kShares) {
        result[share.name] = percentile(calls.seconds, share.share) * kMilliseconds;
    }
    return result;
}

Json CallStatistics::report(double seconds) const {
    Calls all;
    Json operations = Json::object();
    for (const auto& [operation, calls] : m_calls) {
        all.append(calls);
        operations[operation] = latencies(calls);
    }
    Json result = {{"seconds", seconds},
                   {"calls", all.seconds.size()},
                   {"callsPerSecond", static_cast<double>(all.seconds.size()) / seconds},
                   {"failures", m_failures}};
    if (!m_calls.empty()) {
        operations["all"] = latencies(std::move(all));
    }
    result["latencyMilliseconds"] = std::move(operations);
    return result;
}

std::string CallStatistics::table(const Json& report) {
    std::ostringstream text;
    text << heading();
    for (const auto& [operation, calls] : report["latencyMilliseconds"].items()) {
        text << row(operation, calls);
    }
    text << report["calls"] << " calls in " << std::fixed << std::setprecision(2)
         << report["seconds"].get<double>() << " s: " << std::setprecision(1)
         << report["callsPerSecond"].get<double>() << " calls/s\n";
    std::size_t shown = 0;
    const std::size_t kinds = report["failures"].size();
    for (const auto& [failure, count] : report["failures"].items()) {
        text << count << " x " << failure << '\n';
        if (++shown == kMaxShownFailures && kinds > shown) {
            text << "... and " << kinds - shown << " other failures; --json lists them\n";
            break;
        }
    }
    return text.str();
}

}  // namespace client
