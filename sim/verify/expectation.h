#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <vector>

#include "sim/exchanges/exchange.h"
#include "sim/text/jsonNode.h"

namespace sim {

/// What one member of a call has to be.
struct MemberExpectation {
    enum class Kind { exact, like, absent };
    std::string name;
    Kind kind = Kind::exact;
    std::string text;  // with "like", "*" and "?" stand for any characters
};

/// Which calls are expected, how many of them, and how soon.
struct Expectation {
    std::string command;  // "HccAttachVolume", "TarnServer::Get", or "*"
    std::string cluster;  // empty: any
    std::string outcome;  // empty: any; else how the outcome begins
    std::vector<MemberExpectation> members;
    std::size_t atLeast = 1;
    std::optional<std::size_t> atMost = 1;  // none: any number
    std::optional<std::chrono::milliseconds> within;
};

/// Throws std::runtime_error that names the place and what is wrong there.
Expectation expectationFromJson(const JsonNode& json);

/// Whether `text` is what `pattern` says: "*" stands for any characters, "?" for one.
bool isLike(std::string_view text, std::string_view pattern);

/// How a call differs from what is expected, a sentence for each point; none when it fits.
std::vector<std::string> differences(const Expectation& expected, const Exchange& call);

/// Such as "HccAttachVolume with VolumeId \"vol-1\"".
std::string textOf(const Expectation& expected);
/// "once" or "2 times".
std::string timesText(std::size_t count);
/// Such as "exactly once" or "2 times or more".
std::string countTextOf(const Expectation& expected);

}  // namespace sim
