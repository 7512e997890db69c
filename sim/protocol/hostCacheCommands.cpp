#include "sim/protocol/hostCacheCommands.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "sim/array/arrayState.h"
#include "sim/array/refusal.h"
#include "sim/protocol/apiReply.h"
#include "sim/protocol/apiRequest.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

std::int64_t portOf(const std::string& text) {
    std::int64_t port = -1;
    const char* end = text.data() + text.size();
    const auto [last, error] = std::from_chars(text.data(), end, port);
    if (error != std::errc() || last != end || port < 0 || port > 65535) {
        throw Refusal("InvalidValue", "\"" + text + "\" is not a port", "A port is 0 to 65535.");
    }
    return port;
}

std::vector<Address> addressesOf(const ApiRequest& request, const char* list) {
    std::vector<Address> out;
    for (Record& record : request.records(list, "Ipv4AddressPort")) {
        out.push_back({std::move(record["Ipv4Address"]), portOf(record["Port"])});
    }
    return out;
}

std::vector<Interface> interfacesOf(const ApiRequest& request) {
    std::vector<Interface> out;
    for (Record& record :
         request.records("HcnStorageInterfaceList", "NorvaneInterfaceInformation")) {
        out.push_back({std::move(record["InterfaceId"]), std::move(record["InterfaceType"])});
    }
    return out;
}

std::string ping(ArrayState& /*state*/, const ApiRequest& /*request*/) {
    return returnTrue();
}

std::string addHccToSan(ArrayState& state, const ApiRequest& request) {
    state.join({request.text("HccId"), request.text("HccKey"), request.text("HccName"),
                addressesOf(request, "Ipv4AddressPortList")});
    return returnTrue();
}

std::string removeHccFromSan(ArrayState& state, const ApiRequest& request) {
    state.leave(request.text("HccId"));
    return returnTrue();
}

std::string renameHccInSan(ArrayState& state, const ApiRequest& request) {
    state.rename(request.text("HccId"), request.text("Name"));
    return returnTrue();
}

std::string newPrimaryCfmAddress(ArrayState& state, const ApiRequest& request) {
    state.newPrimaryManager(request.text("HccId"), addressesOf(request, "ManagementIpAddressList"));
    return returnTrue();
}

std::string addServer(ArrayState& state, const ApiRequest& request) {
    state.addServer(request.text("HccId"),
                    {request.text("HcnId"), request.text("Hostname"), request.text("OsType"),
                     request.text("OsVersion"), addressesOf(request, "Ipv4AddressPortList"),
                     interfacesOf(request)});
    return returnTrue();
}

std::string removeServer(ArrayState& state, const ApiRequest& request) {
    state.removeServer(request.text("HccId"), request.text("HcnId"));
    return returnTrue();
}

std::string hccAttachVolume(ArrayState& state, const ApiRequest& request) {
    const Volume volume = state.attach(request.text("HccId"), request.text("VolumeId"));
    return xmlWrap(
        "ReturnMethodObject",
        xmlWrap("NorvaneScsiInformation",
                xmlElement("AliasScsiDeviceId", volume.alias.deviceId) +
                    xmlElement("AliasScsiSerialNumber", volume.alias.serialNumber) +
                    xmlElement("OriginalScsiDeviceId", volume.original.deviceId) +
                    xmlElement("OriginalScsiSerialNumber", volume.original.serialNumber)));
}

std::string hccDetachVolume(ArrayState& state, const ApiRequest& request) {
    state.detach(request.text("HccId"), request.text("VolumeId"));
    return returnTrue();
}

std::string makeDataAvailable(ArrayState& state, const ApiRequest& request) {
    state.makeAvailable(request.text("HccId"), request.text("HcnId"), request.text("VolumeId"));
    return returnTrue();
}

std::string makeDataUnavailable(ArrayState& state, const ApiRequest& request) {
    state.makeUnavailable(request.text("HccId"), request.text("HcnId"), request.text("VolumeId"));
    return returnTrue();
}

std::string flushComplete(ArrayState& state, const ApiRequest& request) {
    state.reportFlushed(request.text("HccId"), request.text("VolumeId"),
                        request.text("SnapshotId"));
    return returnTrue();
}

std::string snapshotPrepareComplete(ArrayState& state, const ApiRequest& request) {
    state.reportPrepared(request.text("HccId"), request.text("VolumeId"),
                         request.text("SnapshotId"));
    return returnTrue();
}

// How to add a command: write its function above, which takes what it needs from the request, works
// on the state, raises Refusal with a sentence that says what is wrong, and returns the value
// element of the reply; then add its row here. Every reply needs a value: a success without
// one is a malformed reply. An attribute that the service may leave out is not required:
// HccName and Hostname are optional for a cluster, and the service sends neither SanOpaque nor
// ManagementIpAddressList.
constexpr std::string_view kHostCache = "TarnHostCache";
// clang-format off
const std::array kCommands = {
    //      object      command                    open   required                                         function
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
};
// clang-format on

}  // namespace

std::span<const Command> hostCacheCommands() {
    return kCommands;
}

}  // namespace sim
