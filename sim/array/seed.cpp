#include "sim/array/seed.h"

#include "sim/array/arrayState.h"
#include "sim/array/refusal.h"

namespace sim {

namespace {

std::string text(const Json& object, const char* name) {
    return object.value(name, "");
}

std::string requiredText(const Json& object, const char* name, const std::string& what) {
    std::string value = text(object, name);
    if (value.empty()) {
        throw std::runtime_error(what + " needs a \"" + name + "\"");
    }
    return value;
}

/// The member as a list; an absent one is an empty list.
Json list(const Json& object, const char* name) {
    return object.value(name, Json::array());
}

std::vector<Address> addresses(const Json& object) {
    std::vector<Address> out;
    for (const Json& entry : list(object, "addresses")) {
        onlyMembers(entry, "an address", {"address", "port"});
        out.push_back({requiredText(entry, "address", "an address"), entry.value("port", 0)});
    }
    return out;
}

ScsiIdentity identity(const Json& volume, const char* name, const ScsiIdentity& otherwise) {
    if (!volume.contains(name)) {
        return otherwise;
    }
    onlyMembers(volume[name], "a SCSI identity", {"deviceId", "serialNumber"});
    return {volume[name].value("deviceId", otherwise.deviceId),
            volume[name].value("serialNumber", otherwise.serialNumber)};
}

void plantVolume(const Json& entry, std::int64_t number, ArrayState& state) {
    onlyMembers(entry, "a volume", {"id", "name", "sizeInBytes", "original", "alias"});
    Volume volume = numberedVolume(number);
    volume.id = requiredText(entry, "id", "a volume");
    volume.name = entry.value("name", volume.id);
    volume.sizeInBytes = entry.value("sizeInBytes", volume.sizeInBytes);
    volume.original = identity(entry, "original", volume.original);
    volume.alias = identity(entry, "alias", volume.alias);
    state.addVolume(volume);
}

void plantServer(const Json& entry, const std::string& cluster, ArrayState& state) {
    onlyMembers(entry, "a server",
                {"id", "hostname", "osType", "osVersion", "addresses", "interfaces"});
    Server server{requiredText(entry, "id", "a server"),
                  text(entry, "hostname"),
                  text(entry, "osType"),
                  text(entry, "osVersion"),
                  addresses(entry),
                  {}};
    for (const Json& interface : list(entry, "interfaces")) {
        onlyMembers(interface, "an interface", {"id", "type"});
        server.interfaces.push_back(
            {requiredText(interface, "id", "an interface"), text(interface, "type")});
    }
    state.addServer(cluster, server);
}

void plantAttachment(const Json& entry, const std::string& cluster, ArrayState& state) {
    onlyMembers(entry, "an attachment", {"volume", "availableOn"});
    const std::string volume = requiredText(entry, "volume", "an attachment");
    state.attach(cluster, volume);
    for (const Json& server : list(entry, "availableOn")) {
        state.makeAvailable(cluster, server.get<std::string>(), volume);
    }
}

void plantCluster(const Json& entry, ArrayState& state) {
    onlyMembers(entry, "a cluster",
                {"id", "key", "name", "joined", "addresses", "servers", "attachments"});
    const Cluster cluster{requiredText(entry, "id", "a cluster"), text(entry, "key"),
                          text(entry, "name"), addresses(entry)};
    if (!entry.value("joined", true)) {
        return state.expect(cluster);
    }
    state.join(cluster);
    for (const Json& server : list(entry, "servers")) {
        plantServer(server, cluster.id, state);
    }
    for (const Json& attachment : list(entry, "attachments")) {
        plantAttachment(attachment, cluster.id, state);
    }
}

void plantContent(const Json& content, std::int64_t number, ArrayState& state) {
    onlyMembers(content, "the seed", {"array", "volumes", "clusters"});
    if (content.contains("array")) {
        onlyMembers(content["array"], "the array", {"name", "serialNumber"});
        state.setIdentity(content["array"].value("name", "Array Simulator"),
                          content["array"].value("serialNumber", std::int64_t{101}));
    }
    for (const Json& volume : list(content, "volumes")) {
        plantVolume(volume, ++number, state);
    }
    for (const Json& cluster : list(content, "clusters")) {
        plantCluster(cluster, state);
    }
}

}  // namespace

void plant(const Seed& seed, ArrayState& state) {
    state.setIdentity("Array Simulator", 101);
    for (int number = 1; number <= seed.volumes; ++number) {
        state.addVolume(numberedVolume(number));
    }
    if (seed.content.is_null()) {
        return;
    }
    try {
        plantContent(seed.content, seed.volumes, state);
    } catch (const Json::exception& problem) {
        throw std::runtime_error("the seed is wrong: " + plainText(problem));
    }
}

}  // namespace sim
