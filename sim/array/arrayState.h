#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "sim/array/database.h"

namespace sim {

struct Address {
    std::string address;
    std::int64_t port = 0;
};

struct Interface {
    std::string id;
    std::string type;  // transport, as the management API names it; may be empty
};

struct Cluster {
    std::string id;
    std::string key;
    std::string name;  // empty: the id serves
    std::vector<Address> addresses;
};

struct Server {
    std::string id;
    std::string hostname;
    std::string osType;
    std::string osVersion;
    std::vector<Address> addresses;
    std::vector<Interface> interfaces;
};

struct ScsiIdentity {
    std::string deviceId;
    std::string serialNumber;
};

struct Volume {
    std::string id;
    std::string name;
    std::int64_t sizeInBytes = 0;
    ScsiIdentity original;
    ScsiIdentity alias;  // under which the cluster presents it to its clients
};

/// What the array knows: clusters, their servers, volumes, and who uses what. Each change
/// either happens whole or raises Refusal with the reason, and then nothing has changed. With
/// a file the state outlives the program.
///
///     ArrayState state(":memory:");
///     state.addVolume({.id = "vol-1"});
///     state.join({.id = "hcc-1", .key = "secret"});
///     const Volume volume = state.attach("hcc-1", "vol-1");
///
/// Cluster keys are kept as digests only.
class ArrayState {
public:
    explicit ArrayState(const std::string& file);

    bool isEmpty();
    /// Forgets everything.
    void clear();
    /// A lenient array refuses nothing: it makes what a command names and it does not know.
    void setLenient(bool lenient) { m_lenient = lenient; }
    bool isLenient() const { return m_lenient; }
    /// Does all of `work` on this state or, when it raises, nothing of it.
    template <class Work>
    void atomically(const Work& work) {
        m_database.atomically(work);
    }
    void setIdentity(const std::string& name, std::int64_t serialNumber);

    /// A cluster that may join with this key, and with no other.
    void expect(const Cluster& cluster);
    void join(const Cluster& cluster);
    void leave(const std::string& cluster);
    void rename(const std::string& cluster, const std::string& name);
    /// `addresses` may be empty: then only the report is counted.
    void newPrimaryManager(const std::string& cluster, const std::vector<Address>& addresses);
    void addServer(const std::string& cluster, const Server& server);
    void removeServer(const std::string& cluster, const std::string& server);

    void addVolume(const Volume& volume);
    /// Attaching again to the same cluster is fine: a cluster repeats it for a new node.
    Volume attach(const std::string& cluster, const std::string& volume);
    void detach(const std::string& cluster, const std::string& volume);
    void makeAvailable(const std::string& cluster, const std::string& server,
                       const std::string& volume);
    void makeUnavailable(const std::string& cluster, const std::string& server,
                         const std::string& volume);
    void reportPrepared(const std::string& cluster, const std::string& volume,
                        const std::string& snapshot);
    void reportFlushed(const std::string& cluster, const std::string& volume,
                       const std::string& snapshot);

    bool hasJoined(const std::string& cluster);
    bool isMember(const std::string& cluster, const std::string& server);
    /// The servers of any cluster on which the volume's data is available.
    std::vector<Row> serversWithDataOf(const std::string& volume);

    /// Everything, for showing: {"array", "clusters": [...], "volumes": [...]}.
    Row view();
    /// For the object side: rows as the queries in arrayView.cpp name them.
    Row array();
    std::vector<Row> hostCaches();
    std::vector<Row> servers();
    std::vector<Row> interfaces(std::int64_t serverNumber);
    std::vector<Row> mappings(std::int64_t serverNumber);

private:
    Database m_database;
    bool m_lenient = false;

    // Each makes sure that the thing is there: a strict array refuses when it is not, a lenient
    // one makes it.
    void refuseUnlessLenient(const char* code, const std::string& error,
                             const std::string& detail) const;
    void ensureCluster(const std::string& cluster);
    std::int64_t ensureServer(const std::string& cluster, const std::string& server);
    void ensureVolume(const std::string& volume);
    void ensureAttached(const std::string& cluster, const std::string& volume);
    void report(const std::string& cluster, const std::string& volume, const std::string& snapshot,
                const char* increment);
    void storeAddresses(const std::string& cluster, const std::vector<Address>& addresses);
    Row clusterView(const Row& cluster);
    Row serverView(const Row& server);
};

/// A volume with identities made from its number, as the array gives them out.
Volume numberedVolume(std::int64_t number);

}  // namespace sim
