#pragma once

#include <chrono>
#include <cstdint>
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
    std::string label;  // "TarnHostCache::Ping"
    std::string request;
    std::string reply;    // the document; empty when what was sent is none
    std::string outcome;  // "ok", or the refusal's words
    std::string fault;    // the fault that was injected, if any
    std::chrono::microseconds took{0};
};

/// "2026-11-21T06:20:00.123Z #12 TarnHostCache::Ping from 10.0.0.9: ok (0.2 ms)"; always one
/// line, whatever the texts hold.
std::string summaryLine(const Exchange& exchange);

/// The instant in UTC with milliseconds.
std::string utcTime(std::chrono::system_clock::time_point time);

/// `text` with every control character written as an escape.
std::string oneLine(const std::string& text);

}  // namespace sim
