#include "sim/array/seed.h"

#include <set>

#include "sim/array/arrayState.h"
#include "sim/array/refusal.h"
#include "sim/text/jsonNode.h"

namespace sim {

namespace {

constexpr std::int64_t kMaxPort = 65535;
constexpr const char* kDefaultName = "Array Simulator";
constexpr std::int64_t kDefaultSerialNumber = 101;

/// The ids of one kind of thing, each of which may be there once.
class Ids {
public:
    std::string take(const JsonNode& entry) {
        std::string id = entry.text("id");
        if (!m_taken.insert(id).second) {
            entry.member("id").fail("is \"" + id + "\", which is there already");
        }
        return id;
    }
    void add(const std::string& id) { m_taken.insert(id); }

private:
    std::set<std::string> m_taken;
};

/// Does a step that the array may refuse; its words then go with the place that asked for it.
template <class Step>
void planted(const JsonNode& entry, const Step& step) {
    try {
        step();
    } catch (const Refusal& failure) {
        entry.fail(std::string("cannot be: ") + failure.what());
    }
}

std::vector<Address> addresses(const JsonNode& entry) {
    std::vector<Address> out;
    for (const JsonNode& address : entry.list("addresses")) {
        address.only({"address", "port"});
        out.push_back({address.text("address"), address.number("port", 0, kMaxPort)});
    }
    return out;
}

ScsiIdentity identity(const JsonNode& volume, const char* name, const ScsiIdentity& fallback) {
    if (!volume.has(name)) {
        return fallback;
    }
    const JsonNode given = volume.member(name);
    given.only({"deviceId", "serialNumber"});
    return {given.text("deviceId", fallback.deviceId),
            given.text("serialNumber", fallback.serialNumber)};
}

void plantVolume(const JsonNode& entry, std::int64_t number, Ids& ids, ArrayState& state) {
    entry.only({"id", "name", "sizeInBytes", "original", "alias"});
    Volume volume = numberedVolume(number);
    volume.id = ids.take(entry);
    volume.name = entry.text("name", volume.id);
    volume.sizeInBytes = entry.number("sizeInBytes", volume.sizeInBytes);
    volume.original = identity(entry, "original", volume.original);
    volume.alias = identity(entry, "alias", volume.alias);
    state.addVolume(volume);
}

void plantServer(const JsonNode& entry, const std::string& cluster, ArrayState& state) {
    entry.only({"id", "hostname", "osType", "osVersion", "addresses", "interfaces"});
    Server server{entry.text("id"),         entry.text("hostname", ""),
                  entry.text("osType", ""), entry.text("osVersion", ""),
                  addresses(entry),         {}};
    for (const JsonNode& interface : entry.list("interfaces")) {
        interface.only({"id", "type"});
        server.interfaces.push_back({interface.text("id"), interface.text("type", "")});
    }
    planted(entry, [&] { state.addServer(cluster, server); });
}

void plantAttachment(const JsonNode& entry, const std::string& cluster, ArrayState& state) {
    entry.only({"volume", "availableOn"});
    const std::string volume = entry.text("volume");
    planted(entry, [&] {
        state.attach(cluster, volume);
        for (const std::string& server : entry.texts("availableOn")) {
            state.makeAvailable(cluster, server, volume);
        }
    });
}

void plantCluster(const JsonNode& entry, Ids& ids, ArrayState& state) {
    entry.only({"id", "key", "name", "joined", "addresses", "servers", "attachments"});
    const Cluster cluster{ids.take(entry), entry.text("key", ""), entry.text("name", ""),
                          addresses(entry)};
    if (!entry.flag("joined", true)) {
        return state.expect(cluster);
    }
    state.join(cluster);
    for (const JsonNode& server : entry.list("servers")) {
        plantServer(server, cluster.id, state);
    }
    for (const JsonNode& attachment : entry.list("attachments")) {
        plantAttachment(attachment, cluster.id, state);
    }
}

void plantContent(const JsonNode& content, std::int64_t number, Ids volumes, ArrayState& state) {
    content.only({"array", "volumes", "clusters"});
    if (content.has("array")) {
        const JsonNode array = content.member("array");
        array.only({"name", "serialNumber"});
        state.setIdentity(array.text("name", kDefaultName),
                          array.number("serialNumber", kDefaultSerialNumber));
    }
    for (const JsonNode& volume : content.list("volumes")) {
        plantVolume(volume, ++number, volumes, state);
    }
    Ids clusters;
    for (const JsonNode& cluster : content.list("clusters")) {
        plantCluster(cluster, clusters, state);
    }
}

}  // namespace

void plant(const Seed& seed, ArrayState& state) {
    Ids volumes;
    state.setIdentity(kDefaultName, kDefaultSerialNumber);
    for (int number = 1; number <= seed.volumes; ++number) {
        const Volume volume = numberedVolume(number);
        volumes.add(volume.id);
        state.addVolume(volume);
    }
    if (!seed.content.is_null()) {
        plantContent(JsonNode(seed.content, seed.source), seed.volumes, std::move(volumes), state);
    }
}

}  // namespace sim
