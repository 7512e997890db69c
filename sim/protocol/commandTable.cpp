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

// How to add a command: write its function, which takes what it needs from the request, works
// on the state, raises Refusal with a sentence that says what is wrong, and returns the value
// element of the reply; then add its row here. Every reply needs a value: a success without
// one is a malformed reply. An attribute that the service may leave out is not required:
// HccName and Hostname are optional for a cluster, and the service sends neither SanOpaque nor
// ManagementIpAddressList.
// clang-format off
const std::array kCommands = {
    //      object     command                    open   required                                         function
    Command{kHostCache, "Ping",                    true,  {},                                              ping},
    Command{kHostCache, "AddHccToSan",             false, {"HccId", "HccKey", "Ipv4AddressPortList"},      addHccToSan},
    Command{kHostCache, "RemoveHccFromSan",        false, {"HccId"},                                       removeHccFromSan},
    Command{kHostCache, "RenameHccInSan",          false, {"HccId", "Name"},                               renameHccInSan},
    Command{kHostCache, "NewPrimaryCfmAddress",    false, {"HccId"},                                       newPrimaryCfmAddress},
    Command{kHostCache, "AddServer",               false, {"HccId", "HcnId", "HcnStorageInterfaceList",
                                                          "Ipv4AddressPortList"},                         addServer},
    Command{kHostCache, "RemoveServer",            false, {"HccId", "HcnId"},                              removeServer},
    Command{kHostCache, "HccAttachVolume",         false, {"HccId", "VolumeId"},                           hccAttachVolume},
    Command{kHostCache, "HccDetachVolume",         false, {"HccId", "VolumeId"},                           hccDetachVolume},
    Command{kHostCache, "MakeDataAvailable",       false, {"HccId", "HcnId", "VolumeId"},                  makeDataAvailable},
    Command{kHostCache, "MakeDataUnavailable",     false, {"HccId", "HcnId", "VolumeId"},                  makeDataUnavailable},
    Command{kHostCache, "FlushComplete",           false, {"HccId", "SnapshotId", "VolumeId"},             flushComplete},
    Command{kHostCache, "SnapshotPrepareComplete", false, {"HccId", "SnapshotId", "VolumeId"},             snapshotPrepareComplete},
    Command{kHostCache, "Get",                     false, {"InstanceId"},                                  getObject},
    Command{kHostCache, "GetList",                 false, {},                                              getObjectList},
    Command{kServer,    "Get",                     false, {"InstanceId"},                                  getObject},
    Command{kServer,    "GetList",                 false, {},                                              getObjectList},
};
// clang-format on

/// Every association starts at an object, and asks nothing else.
const Command association = {"", "", false, {"InstanceId"}, followAssociation};

const Command& commandFor(const ApiRequest& request) {
    if (request.isAssociation) {
        return association;
    }
    const auto command = std::find_if(kCommands.begin(), kCommands.end(), [&](const Command& row) {
        return row.object == request.object && row.name == request.command;
    });
    if (command == kCommands.end()) {
        throw Refusal("UnknownCommand", "Command " + request.label() + " is not supported",
                      "The array simulator does not know this command.");
    }
    return *command;
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
    std::transform(kCommands.begin(), kCommands.end(), std::inserter(names, names.begin()),
                   [](const Command& row) { return commandLabel(row.object, row.name); });
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
