#include "client/report/callStatistics.h"

#include <gtest/gtest.h>

namespace {

client::Outcome outcome(double seconds, client::ExitStatus status = client::ExitStatus::Done) {
    return {status, "", status == client::ExitStatus::Done ? "" : "why", seconds};
}

TEST(CallStatistics, PercentilesAreValuesThatWereMet) {
    const std::vector<double> values = {1, 2, 3, 4, 5, 6, 7, 8, 9, 10};
    const std::vector<std::pair<double, double>> rows = {
        {0.01, 1}, {0.1, 1}, {0.11, 2}, {0.5, 5}, {0.9, 9}, {0.99, 10}, {1, 10},
    };
    for (const auto& [share, expected] : rows) {
        EXPECT_EQ(client::CallStatistics::percentile(values, share), expected) << share;
    }
    EXPECT_EQ(client::CallStatistics::percentile({7}, 0.5), 7);
}

TEST(CallStatistics, ReportsEachOperationAndAll) {
    client::CallStatistics calls;
    calls.add("Ping", outcome(0.004));
    calls.add("AddServer", outcome(0.002, client::ExitStatus::RefusedByArray));
    calls.add("Ping", outcome(0.001));
    calls.add("AddServer", outcome(0.003, client::ExitStatus::RefusedByArray));
    const client::Json report = calls.report(2);
    const client::Json& latency = report["latencyMilliseconds"];
    EXPECT_EQ(report["calls"], 4);
    EXPECT_EQ(report["callsPerSecond"], 2.0);
    EXPECT_EQ(report["failures"]["AddServer: refused by the array: why"], 2);
    EXPECT_EQ(latency["AddServer"]["failed"], 2);
    EXPECT_DOUBLE_EQ(latency["Ping"]["p50"], 1);
    EXPECT_DOUBLE_EQ(latency["Ping"]["max"], 4);
    EXPECT_EQ(latency["all"]["calls"], 4);
}

TEST(CallStatistics, ShowsPeopleTenKindsOfFailure) {
    client::CallStatistics calls;
    for (char kind = 'a'; kind <= 'k'; ++kind) {
        const std::string shown = client::CallStatistics::table(calls.report(1));
        EXPECT_EQ(shown.find("other failures"), std::string::npos) << "before " << kind;
        calls.add(std::string(1, kind), outcome(1, client::ExitStatus::NoAnswer));
    }
    EXPECT_NE(client::CallStatistics::table(calls.report(1)).find("... and 1 other failures"),
              std::string::npos);
}

}  // namespace
