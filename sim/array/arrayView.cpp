// The state as it is shown: to people, and to the object side of the management API.
#include "sim/array/arrayState.h"

namespace sim {

namespace {

Row arrayOf(std::vector<Row> rows) {
    Row out = Row::array();
    for (Row& row : rows) {
        out.push_back(std::move(row));
    }
    return out;
}

/// The values of the one column of `rows`.
Row column(const std::vector<Row>& rows) {
    Row out = Row::array();
    for (const Row& row : rows) {
        out.push_back(row.begin().value());
    }
    return out;
}

}  // namespace

Row ArrayState::array() {
    const auto row = m_database.one("SELECT name, serialNumber FROM array");
    return row ? *row : Row{{"name", ""}, {"serialNumber", 0}};
}

Row ArrayState::clusterView(const Row& cluster) {
    const auto id = cluster["id"].get<std::string>();
    Row out{{"id", id},
            {"name", cluster["name"]},
            {"joined", cluster["joined"] == 1},
            {"primaryReports", cluster["primaryReports"]}};
    out["addresses"] = arrayOf(m_database.all(
        "SELECT address, port FROM clusterAddresses WHERE cluster = ? ORDER BY rowid", id));
    out["servers"] = Row::array();
    const char* members = "SELECT * FROM servers WHERE cluster = ? ORDER BY n";
    for (const Row& server : m_database.all(members, id)) {
        out["servers"].push_back(serverView(server));
    }
    return out;
}

Row ArrayState::serverView(const Row& server) {
    const auto number = server["n"].get<std::int64_t>();
    Row out{{"id", server["id"]},
            {"hostname", server["hostname"]},
            {"osType", server["osType"]},
            {"osVersion", server["osVersion"]}};
    out["addresses"] = arrayOf(m_database.all(
        "SELECT address, port FROM serverAddresses WHERE server = ? ORDER BY rowid", number));
    out["interfaces"] = arrayOf(interfaces(number));
    return out;
}

Row ArrayState::view() {
    Row out{{"array", array()}, {"clusters", Row::array()}, {"volumes", Row::array()}};
    for (const Row& cluster : m_database.all("SELECT * FROM clusters ORDER BY n")) {
        out["clusters"].push_back(clusterView(cluster));
    }
    for (Row volume :
         m_database.all("SELECT v.*, coalesce(cluster, '') AS attachedTo FROM volumes v"
                        " LEFT JOIN attachments ON volume = v.id ORDER BY v.n")) {
        const auto id = volume["id"].get<std::string>();
        volume.erase("n");
        volume["availableOn"] = column(serversWithDataOf(id));
        volume["snapshots"] = arrayOf(m_database.all(
            "SELECT id, prepared, flushed FROM snapshots WHERE volume = ? ORDER BY rowid", id));
        out["volumes"].push_back(std::move(volume));
    }
    return out;
}

bool ArrayState::hasJoined(const std::string& cluster) {
    return m_database.one("SELECT 1 FROM clusters WHERE id = ? AND joined", cluster).has_value();
}

bool ArrayState::isMember(const std::string& cluster, const std::string& server) {
    return m_database.one("SELECT 1 FROM servers WHERE cluster = ? AND id = ?", cluster, server)
        .has_value();
}

std::vector<Row> ArrayState::serversWithDataOf(const std::string& volume) {
    return m_database.all(
        "SELECT id FROM servers JOIN availability ON server = n WHERE volume = ? ORDER BY n",
        volume);
}

std::vector<Row> ArrayState::hostCaches() {
    return m_database.all(
        "SELECT c.n, c.id, c.name, coalesce(a.address, '') AS address, coalesce(a.port, 0) AS port,"
        " (SELECT count(*) FROM attachments WHERE cluster = c.id) AS volumes"
        " FROM clusters c LEFT JOIN clusterAddresses a ON a.rowid ="
        " (SELECT min(rowid) FROM clusterAddresses WHERE cluster = c.id)"
        " WHERE c.joined ORDER BY c.n");
}

std::vector<Row> ArrayState::servers() {
    return m_database.all(
        "SELECT s.*, c.n AS clusterNumber, c.name AS clusterName,"
        " (SELECT count(*) FROM serverInterfaces WHERE server = s.n) AS interfaces,"
        " (SELECT count(*) FROM availability WHERE server = s.n) AS volumes"
        " FROM servers s JOIN clusters c ON c.id = s.cluster ORDER BY s.n");
}

std::vector<Row> ArrayState::interfaces(std::int64_t serverNumber) {
    return m_database.all("SELECT id, type FROM serverInterfaces WHERE server = ? ORDER BY rowid",
                          serverNumber);
}

std::vector<Row> ArrayState::mappings(std::int64_t serverNumber) {
    return m_database.all(
        "SELECT v.n, v.id, v.name FROM volumes v JOIN availability a ON a.volume = v.id"
        " WHERE a.server = ? ORDER BY v.n",
        serverNumber);
}

}  // namespace sim
