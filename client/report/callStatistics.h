#pragma once

#include <map>
#include <string>
#include <vector>

#include "client/call/session.h"
#include "client/report/replyJson.h"

namespace client {

/// Counts and latencies of many calls. Not for several threads at once.
class CallStatistics {
public:
    void add(const std::string& operation, const Outcome& outcome);

    /// Throughput over `seconds`, latency percentiles (nearest rank) in milliseconds for each
    /// operation and for all, and how often each failure was met.
    Json report(double seconds) const;
    /// A report as text for people.
    static std::string table(const Json& report);

    /// The value below or at which `share` (above 0, up to 1) of the values lie; `sorted` must
    /// not be empty.
    static double percentile(const std::vector<double>& sorted, double share);

private:
    struct Calls {
        std::vector<double> seconds;
        std::size_t failed = 0;

        void append(const Calls& other);
    };
    static Json latencies(Calls calls);

    std::map<std::string, Calls> m_calls;
    std::map<std::string, std::size_t> m_failures;
};

}  // namespace client
