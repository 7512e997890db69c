#include <algorithm>
#include <array>
#include <iterator>

#include "sim/array/arrayState.h"
#include "sim/array/refusal.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/command.h"
#include "sim/protocol/hostCacheCommands.h"
#include "sim/protocol/objectCommands.h"

namespace sim {

namespace {

constexpr std::string_view hostCache = "TarnHostCache";
constexpr std::string_view server = "TarnServer";

// How to add a command: write its function, which takes what it needs from the request, works
// on the state, raises Refusal with a sentence that says what is wrong, and returns the value
// element of the reply; then add its row here. Every reply needs a value: a success without
// one is a malformed reply. An attribute that the service may leave out is not required:
// HccName and Hostname are optional for a cluster, and the service sends neither SanOpaque nor
// ManagementIpAddressList.
// clang-format off
const std::array commands = {
    //      object     command                    open   required                                         function
    Command{hostCache, "Ping",                    true,  {},                                              ping},
    Command{hostCache, "AddHccToSan",             false, {"HccId", "HccKey", "Ipv4AddressPortList"},      addHccToSan},
    Command{hostCache, "RemoveHccFromSan",        false, {"HccId"},                                       removeHccFromSan},
    Command{hostCache, "RenameHccInSan",          false, {"HccId", "Name"},                               renameHccInSan},
    Command{hostCache, "NewPrimaryCfmAddress",    false, {"HccId"},                                       newPrimaryCfmAddress},
    Command{hostCache, "AddServer",               false, {"HccId", "HcnId", "HcnStorageInterfaceList",
                                                          "Ipv4AddressPortList"},                         addServer},
    Command{hostCache, "RemoveServer",            false, {"HccId", "HcnId"},                              removeServer},
    Command{hostCache, "HccAttachVolume",         false, {"HccId", "VolumeId"},                           hccAttachVolume},
    Command{hostCache, "HccDetachVolume",         false, {"HccId", "VolumeId"},                           hccDetachVolume},
    Command{hostCache, "MakeDataAvailable",       false, {"HccId", "HcnId", "VolumeId"},                  makeDataAvailable},
    Command{hostCache, "MakeDataUnavailable",     false, {"HccId", "HcnId", "VolumeId"},                  makeDataUnavailable},
    Command{hostCache, "FlushComplete",           false, {"HccId", "SnapshotId", "VolumeId"},             flushComplete},
    Command{hostCache, "SnapshotPrepareComplete", false, {"HccId", "SnapshotId", "VolumeId"},             snapshotPrepareComplete},
    Command{hostCache, "Get",                     false, {"InstanceId"},                                  getObject},
    Command{hostCache, "GetList",                 false, {},                                              getObjectList},
    Command{server,    "Get",                     false, {"InstanceId"},                                  getObject},
    Command{server,    "GetList",                 false, {},                                              getObjectList},
};
// clang-format on

/// Every association starts at an object, and asks nothing else.
const Command association = {"", "", false, {"InstanceId"}, followAssociation};

const Command& commandFor(const ApiRequest& request) {
    if (request.isAssociation) {
        return association;
    }
    const auto command = std::find_if(commands.begin(), commands.end(), [&](const Command& row) {
        return row.object == request.object && row.name == request.command;
    });
    if (command == commands.end()) {
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
    std::transform(commands.begin(), commands.end(), std::inserter(names, names.begin()),
                   [](const Command& row) { return commandLabel(row.object, row.name); });
    return names;
}

}  // namespace sim
