#include "sim/array/arrayState.h"

#include <openssl/evp.h>

#include <array>

#include "sim/array/refusal.h"

namespace sim {

namespace {

constexpr const char* kSchema = R"sql(
CREATE TABLE IF NOT EXISTS array(name TEXT NOT NULL, serialNumber INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS clusters(
    n INTEGER PRIMARY KEY AUTOINCREMENT, id TEXT NOT NULL UNIQUE, keyDigest TEXT NOT NULL,
    name TEXT NOT NULL, joined INTEGER NOT NULL, primaryReports INTEGER NOT NULL DEFAULT 0);
CREATE TABLE IF NOT EXISTS clusterAddresses(
    cluster TEXT NOT NULL REFERENCES clusters(id) ON DELETE CASCADE,
    address TEXT NOT NULL, port INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS servers(
    n INTEGER PRIMARY KEY AUTOINCREMENT,
    cluster TEXT NOT NULL REFERENCES clusters(id) ON DELETE CASCADE,
    id TEXT NOT NULL, hostname TEXT NOT NULL, osType TEXT NOT NULL, osVersion TEXT NOT NULL,
    UNIQUE(cluster, id));
CREATE TABLE IF NOT EXISTS serverAddresses(
    server INTEGER NOT NULL REFERENCES servers(n) ON DELETE CASCADE,
    address TEXT NOT NULL, port INTEGER NOT NULL);
CREATE TABLE IF NOT EXISTS serverInterfaces(
    server INTEGER NOT NULL REFERENCES servers(n) ON DELETE CASCADE,
    id TEXT NOT NULL, type TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS volumes(
    n INTEGER PRIMARY KEY AUTOINCREMENT, id TEXT NOT NULL UNIQUE, name TEXT NOT NULL,
    sizeInBytes INTEGER NOT NULL, originalDeviceId TEXT NOT NULL,
    originalSerialNumber TEXT NOT NULL, aliasDeviceId TEXT NOT NULL,
    aliasSerialNumber TEXT NOT NULL);
CREATE TABLE IF NOT EXISTS attachments(
    volume TEXT PRIMARY KEY REFERENCES volumes(id) ON DELETE CASCADE,
    cluster TEXT NOT NULL REFERENCES clusters(id));
CREATE TABLE IF NOT EXISTS availability(
    volume TEXT NOT NULL REFERENCES attachments(volume) ON DELETE CASCADE,
    server INTEGER NOT NULL REFERENCES servers(n) ON DELETE CASCADE,
    PRIMARY KEY(volume, server));
CREATE TABLE IF NOT EXISTS snapshots(
    volume TEXT NOT NULL REFERENCES volumes(id) ON DELETE CASCADE, id TEXT NOT NULL,
    prepared INTEGER NOT NULL DEFAULT 0, flushed INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY(volume, id));
)sql";

/// The digest of a cluster key; the empty key, which a lenient array allows, has none.
std::string digest(const std::string& key) {
    if (key.empty()) {
        return "";
    }
    std::array<unsigned char, EVP_MAX_MD_SIZE> bytes{};
    unsigned size = 0;
    ::EVP_Digest(key.data(), key.size(), bytes.data(), &size, ::EVP_sha256(), nullptr);
    std::string out;
    for (unsigned i = 0; i < size; ++i) {
        constexpr std::string_view kDigits = "0123456789abcdef";
        out += kDigits[bytes[i] >> 4U];
        out += kDigits[bytes[i] & 15U];
    }
    return out;
}

}  // namespace

ArrayState::ArrayState(const std::string& file) : m_database(file) {
    m_database.execute(kSchema);
}

bool ArrayState::isEmpty() {
    return !m_database.one("SELECT 1 FROM array UNION ALL SELECT 1 FROM volumes LIMIT 1");
}

void ArrayState::clear() {
    m_database.execute(
        "SAVEPOINT clear; DELETE FROM attachments; DELETE FROM clusters; DELETE FROM volumes;"
        "DELETE FROM array; DELETE FROM sqlite_sequence; RELEASE clear");
}

void ArrayState::setIdentity(const std::string& name, std::int64_t serialNumber) {
    m_database.run("DELETE FROM array");
    m_database.run("INSERT INTO array VALUES(?, ?)", name, serialNumber);
}

void ArrayState::refuseUnlessLenient(const char* code, const std::string& error,
                                     const std::string& detail) const {
    if (!m_lenient) {
        throw Refusal(code, error, detail);
    }
}

void ArrayState::ensureCluster(const std::string& cluster) {
    if (hasJoined(cluster)) {
        return;
    }
    refuseUnlessLenient("ObjectNotFound", "Cluster \"" + cluster + "\" is not known to this array",
                        "Join it with AddHccToSan first.");
    join({cluster, "", "", {}});
}

std::int64_t ArrayState::ensureServer(const std::string& cluster, const std::string& server) {
    const char* sql = "SELECT n FROM servers WHERE cluster = ? AND id = ?";
    if (const auto row = m_database.one(sql, cluster, server)) {
        return (*row)["n"].get<std::int64_t>();
    }
    refuseUnlessLenient("ObjectNotFound",
                        "Server \"" + server + "\" is not a member of cluster \"" + cluster + "\"",
                        "Add it with AddServer first.");
    addServer(cluster, {server, "", "", "", {}, {}});
    return ensureServer(cluster, server);
}

void ArrayState::storeAddresses(const std::string& cluster, const std::vector<Address>& addresses) {
    m_database.run("DELETE FROM clusterAddresses WHERE cluster = ?", cluster);
    for (const auto& [address, port] : addresses) {
        m_database.run("INSERT INTO clusterAddresses VALUES(?, ?, ?)", cluster, address, port);
    }
}

void ArrayState::expect(const Cluster& cluster) {
    m_database.run("INSERT INTO clusters(id, keyDigest, name, joined) VALUES(?, ?, ?, 0)",
                   cluster.id, digest(cluster.key), cluster.name);
}

void ArrayState::join(const Cluster& cluster) {
    m_database.atomically([&] {
        const auto known = m_database.one("SELECT * FROM clusters WHERE id = ?", cluster.id);
        if (known && (*known)["keyDigest"] != digest(cluster.key)) {
            refuseUnlessLenient("InvalidCredentials",
                                "Wrong key for cluster \"" + cluster.id + "\"",
                                "The array knows this cluster by another key.");
        }
        if (known && (*known)["joined"] == 1) {
            refuseUnlessLenient("ObjectAlreadyExists",
                                "Cluster \"" + cluster.id + "\" has joined already",
                                "Remove it with RemoveHccFromSan before it joins again.");
        }
        m_database.run(
            "INSERT INTO clusters(id, keyDigest, name, joined) VALUES(?, ?, ?, 1)"
            " ON CONFLICT(id) DO UPDATE SET name = excluded.name, joined = 1",
            cluster.id, digest(cluster.key), cluster.name.empty() ? cluster.id : cluster.name);
        storeAddresses(cluster.id, cluster.addresses);
    });
}

void ArrayState::leave(const std::string& cluster) {
    m_database.atomically([&] {
        ensureCluster(cluster);
        const char* inUse = "SELECT volume FROM attachments WHERE cluster = ? ORDER BY volume";
        if (const auto row = m_database.one(inUse, cluster)) {
            refuseUnlessLenient("ObjectInUse",
                                "Cluster \"" + cluster + "\" still has volume \"" +
                                    (*row)["volume"].get<std::string>() + "\" attached",
                                "Detach its volumes with HccDetachVolume first.");
        }
        m_database.run("DELETE FROM attachments WHERE cluster = ?", cluster);
        m_database.run("DELETE FROM clusters WHERE id = ?", cluster);
    });
}

void ArrayState::rename(const std::string& cluster, const std::string& name) {
    ensureCluster(cluster);
    m_database.run("UPDATE clusters SET name = ? WHERE id = ?", name, cluster);
}

void ArrayState::newPrimaryManager(const std::string& cluster,
                                   const std::vector<Address>& addresses) {
    m_database.atomically([&] {
        ensureCluster(cluster);
        m_database.run("UPDATE clusters SET primaryReports = primaryReports + 1 WHERE id = ?",
                       cluster);
        if (!addresses.empty()) {
            storeAddresses(cluster, addresses);
        }
    });
}

void ArrayState::addServer(const std::string& cluster, const Server& server) {
    m_database.atomically([&] {
        ensureCluster(cluster);
        m_database.run(
            "INSERT INTO servers(cluster, id, hostname, osType, osVersion)"
            " VALUES(?, ?, ?, ?, ?) ON CONFLICT DO NOTHING",
            cluster, server.id, server.hostname, server.osType, server.osVersion);
        if (m_database.changes() == 0) {
            refuseUnlessLenient(
                "ObjectAlreadyExists",
                "Server \"" + server.id + "\" is a member of cluster \"" + cluster + "\" already",
                "Remove it with RemoveServer before it is added again.");
        }
        const auto number = ensureServer(cluster, server.id);
        for (const auto& [address, port] : server.addresses) {
            m_database.run("INSERT INTO serverAddresses VALUES(?, ?, ?)", number, address, port);
        }
        for (const auto& [id, type] : server.interfaces) {
            m_database.run("INSERT INTO serverInterfaces VALUES(?, ?, ?)", number, id, type);
        }
    });
}

void ArrayState::removeServer(const std::string& cluster, const std::string& server) {
    m_database.atomically([&] {
        ensureCluster(cluster);
        m_database.run("DELETE FROM servers WHERE n = ?", ensureServer(cluster, server));
    });
}

}  // namespace sim
