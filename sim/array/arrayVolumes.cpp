// The state's volumes: their identities, who has them attached, where their data is.
#include <array>
#include <cstdio>

#include "sim/array/arrayState.h"

namespace sim {

namespace {

constexpr std::int64_t kDefaultSize = std::int64_t{100} << 30;  // bytes

/// A registered device id under the prefix that is reserved for documents and examples.
std::string deviceId(std::int64_t number, unsigned series) {
    std::array<char, 40> out{};
    std::snprintf(out.data(), out.size(), "600005e%x%024llx", series,
                  static_cast<unsigned long long>(number));
    return out.data();
}

std::string serialNumber(std::int64_t number, char series) {
    std::array<char, 32> out{};
    std::snprintf(out.data(), out.size(), "SIM%c%08lld", series, static_cast<long long>(number));
    return out.data();
}

Volume volumeOf(const Row& row) {
    const auto text = [&](const char* name) { return row[name].get<std::string>(); };
    return {text("id"),
            text("name"),
            row["sizeInBytes"].get<std::int64_t>(),
            {text("originalDeviceId"), text("originalSerialNumber")},
            {text("aliasDeviceId"), text("aliasSerialNumber")}};
}

}  // namespace

Volume numberedVolume(std::int64_t number) {
    const std::string id = "vol-" + std::to_string(number);
    return {id,
            "Volume " + std::to_string(number),
            kDefaultSize,
            {deviceId(number, 0), serialNumber(number, 'O')},
            {deviceId(number, 1), serialNumber(number, 'A')}};
}

void ArrayState::addVolume(const Volume& volume) {
    m_database.run(
        "INSERT INTO volumes(id, name, sizeInBytes, originalDeviceId, originalSerialNumber,"
        " aliasDeviceId, aliasSerialNumber) VALUES(?, ?, ?, ?, ?, ?, ?)",
        volume.id, volume.name, volume.sizeInBytes, volume.original.deviceId,
        volume.original.serialNumber, volume.alias.deviceId, volume.alias.serialNumber);
}

void ArrayState::ensureVolume(const std::string& volume) {
    if (m_database.one("SELECT 1 FROM volumes WHERE id = ?", volume)) {
        return;
    }
    refuseUnlessLenient("ObjectNotFound", "Volume \"" + volume + "\" is not known to this array",
                        "Check the volume's id.");
    const auto last = m_database.one("SELECT coalesce(max(n), 0) AS n FROM volumes");
    Volume fresh = numberedVolume((*last)["n"].get<std::int64_t>() + 1);
    fresh.id = volume;
    addVolume(fresh);
}

void ArrayState::ensureAttached(const std::string& cluster, const std::string& volume) {
    ensureCluster(cluster);
    ensureVolume(volume);
    const char* sql = "SELECT 1 FROM attachments WHERE volume = ? AND cluster = ?";
    if (m_database.one(sql, volume, cluster)) {
        return;
    }
    refuseUnlessLenient("InvalidState",
                        "Volume \"" + volume + "\" is not attached to cluster \"" + cluster + "\"",
                        "Attach it with HccAttachVolume first.");
    attach(cluster, volume);
}

Volume ArrayState::attach(const std::string& cluster, const std::string& volume) {
    m_database.atomically([&] {
        ensureCluster(cluster);
        ensureVolume(volume);
        const auto held =
            m_database.one("SELECT cluster FROM attachments WHERE volume = ?", volume);
        if (held && (*held)["cluster"] != cluster) {
            refuseUnlessLenient(
                "ObjectInUse", "Volume \"" + volume + "\" is attached to another cluster",
                "Cluster \"" + (*held)["cluster"].get<std::string>() + "\" has it.");
        }
        m_database.run(
            "INSERT INTO attachments VALUES(?, ?) ON CONFLICT(volume) DO UPDATE"
            " SET cluster = excluded.cluster",
            volume, cluster);
    });
    return volumeOf(*m_database.one("SELECT * FROM volumes WHERE id = ?", volume));
}

void ArrayState::detach(const std::string& cluster, const std::string& volume) {
    m_database.atomically([&] {
        ensureAttached(cluster, volume);
        const auto server = m_database.one(
            "SELECT id FROM servers JOIN availability ON server = n WHERE volume = ?", volume);
        if (server) {
            refuseUnlessLenient("ObjectInUse",
                                "Data of volume \"" + volume +
                                    "\" is still available on server \"" +
                                    (*server)["id"].get<std::string>() + "\"",
                                "Report it with MakeDataUnavailable first.");
        }
        m_database.run("DELETE FROM attachments WHERE volume = ?", volume);
    });
}

void ArrayState::makeAvailable(const std::string& cluster, const std::string& server,
                               const std::string& volume) {
    m_database.atomically([&] {
        ensureAttached(cluster, volume);
        m_database.run("INSERT INTO availability VALUES(?, ?) ON CONFLICT DO NOTHING", volume,
                       ensureServer(cluster, server));
    });
}

void ArrayState::makeUnavailable(const std::string& cluster, const std::string& server,
                                 const std::string& volume) {
    m_database.atomically([&] {
        ensureAttached(cluster, volume);
        m_database.run("DELETE FROM availability WHERE volume = ? AND server = ?", volume,
                       ensureServer(cluster, server));
    });
}

void ArrayState::report(const std::string& cluster, const std::string& volume,
                        const std::string& snapshot, const char* increment) {
    m_database.atomically([&] {
        ensureAttached(cluster, volume);
        m_database.run("INSERT INTO snapshots(volume, id) VALUES(?, ?) ON CONFLICT DO NOTHING",
                       volume, snapshot);
        m_database.run(increment, volume, snapshot);
    });
}

void ArrayState::reportPrepared(const std::string& cluster, const std::string& volume,
                                const std::string& snapshot) {
    report(cluster, volume, snapshot,
           "UPDATE snapshots SET prepared = prepared + 1 WHERE volume = ? AND id = ?");
}

void ArrayState::reportFlushed(const std::string& cluster, const std::string& volume,
                               const std::string& snapshot) {
    report(cluster, volume, snapshot,
           "UPDATE snapshots SET flushed = flushed + 1 WHERE volume = ? AND id = ?");
}

}  // namespace sim
