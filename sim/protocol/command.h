#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace sim {

struct ApiRequest;
class ArrayState;
class JsonNode;

/// One method of the management API as this array knows it.
struct Command {
    /// Does the work on the state and gives the value element of the reply. Raises Refusal.
    using Run = std::string (*)(ArrayState& state, const ApiRequest& request);

    std::string_view object;
    std::string_view name;
    bool isOpen;  // needs no credentials
    /// Attributes that must be there with a text, in the order in which they are asked for.
    std::vector<std::string_view> required;
    Run run;
};

/// Runs the command that the request names: looks it up, checks what it requires, calls it.
/// Gives the value element of the reply; raises Refusal, also for a command that the array
/// does not know.
std::string runCommand(ArrayState& state, const ApiRequest& request, bool authorised);

/// All commands and associations: "TarnHostCache::Ping", "TarnServer::HbaList" and so on.
std::vector<std::string> commandNames();

/// Whether `wanted` means this command: its label, its name without the object, or "*".
bool commandMatches(std::string_view wanted, std::string_view label);

/// Throws std::runtime_error, which names `place`, unless `wanted` means a command of this array.
void checkCommand(const JsonNode& place, const std::string& wanted);

}  // namespace sim
