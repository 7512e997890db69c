#pragma once

#include <chrono>
#include <cstdint>
#include <map>
#include <string>
#include <vector>

namespace sim {

/// One call as it is shown to people: what was received, what was sent, and what came of it.
/// Holds no secret: whoever fills it masks them first.
struct Exchange {
    std::uint64_t id = 0;
    std::chrono::system_clock::time_point time;
    std::string clientAddress;
    std::string schemaVersion;
    std::string hccId;        // of the IPC header
    std::string credentials;  // "***" when some came, else empty; likewise the token
    std::string authToken;
    std::vector<std::string> blobNames;
    std::string label;                           // "TarnHostCache::Ping"
    std::map<std::string, std::string> members;  // the request's attributes
    std::vector<std::string> brokenRules;        // those that every cluster has to keep
    std::string request;
    std::string reply;    // the document; empty when what was sent is none
    std::string outcome;  // "ok", or the refusal's words
    std::string fault;    // the fault that was injected, if any
    std::chrono::microseconds took{0};
};

/// "2026-11-21T06:20:00.123Z #12 TarnHostCache::Ping from 10.0.0.9: ok (0.2 ms)"; always one
/// line, whatever the texts hold.
std::string summaryLine(const Exchange& exchange);

/// The cluster that calls: as its request says or, when that does not, the message around it.
const std::string& clusterOf(const Exchange& exchange);

/// The instant in UTC with milliseconds.
std::string utcTime(std::chrono::system_clock::time_point time);

}  // namespace sim
