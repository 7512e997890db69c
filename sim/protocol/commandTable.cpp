#include <algorithm>
#include <array>
#include <iterator>

#include "sim/array/arrayState.h"
#include "sim/array/refusal.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/command.h"
#include "sim/protocol/hostCacheCommands.h"
#include "sim/protocol/objectCommands.h"
#include "sim/text/jsonNode.h"

namespace sim {

namespace {

constexpr std::string_view kHostCache = "TarnHostCache";
constexpr std::string_view kServer = "TarnServer";

// Those that every object has; those of a cluster stand with their functions in
// hostCacheCommands.cpp.
// clang-format off
const std::array kCommands = {
    //      object     command                    open   required                                         function
    Command{kHostCache, "Get",                     false, {"InstanceId"},                                  getObject},
    Command{kHostCache, "GetList",                 false, {},                                              getObjectList},
    Command{kServer,    "Get",                     false, {"InstanceId"},                                  getObject},
    Command{kServer,    "GetList",                 false, {},                                              getObjectList},
};
// clang-format on

/// Every association starts at an object, and asks nothing else.
const Command kAssociation = {"", "", false, {"InstanceId"}, followAssociation};

const Command& commandFor(const ApiRequest& request) {
    if (request.isAssociation) {
        return kAssociation;
    }
    const auto isMeant = [&](const Command& row) {
        return row.object == request.object && row.name == request.command;
    };
    const auto forObjects = std::find_if(kCommands.begin(), kCommands.end(), isMeant);
    if (forObjects != kCommands.end()) {
        return *forObjects;
    }
    const std::span<const Command> ofClusters = hostCacheCommands();
    const auto ofCluster = std::find_if(ofClusters.begin(), ofClusters.end(), isMeant);
    if (ofCluster == ofClusters.end()) {
        throw Refusal("UnknownCommand", "Command " + request.label() + " is not supported",
                      "The array simulator does not know this command.");
    }
    return *ofCluster;
}

void checkRequired(const Command& command, const ApiRequest& request) {
    for (const std::string_view name : command.required) {
        if (request.text(std::string(name)).empty()) {
            throw Refusal("MissingValue", "Required attribute " + std::string(name) + " is missing",
                          request.label() + " needs it.");
        }
    }
}

}  // namespace

std::string runCommand(ArrayState& state, const ApiRequest& request, bool authorised) {
    const Command& command = commandFor(request);
    if (!command.isOpen && !authorised) {
        throw Refusal("InvalidCredentials", "Access denied",
                      "The array does not accept the credentials of this request.");
    }
    if (!state.isLenient()) {
        checkRequired(command, request);
    }
    return command.run(state, request);
}

std::vector<std::string> commandNames() {
    std::vector<std::string> names = associationNames();
    const std::span<const Command> ofClusters = hostCacheCommands();
    for (const std::span<const Command> rows : {std::span<const Command>(kCommands), ofClusters}) {
        std::transform(rows.begin(), rows.end(), std::inserter(names, names.begin()),
                       [](const Command& row) { return commandLabel(row.object, row.name); });
    }
    return names;
}

bool commandMatches(std::string_view wanted, std::string_view label) {
    if (wanted == "*" || wanted == label) {
        return true;
    }
    const auto separator = label.find("::");
    return separator != std::string_view::npos && wanted == label.substr(separator + 2);
}

void checkCommand(const JsonNode& place, const std::string& wanted) {
    const std::vector<std::string> names = commandNames();
    if (std::none_of(names.begin(), names.end(),
                     [&](const std::string& name) { return commandMatches(wanted, name); })) {
        place.fail("has to name a command: there is no command \"" + wanted + "\"");
    }
}

}  // namespace sim
