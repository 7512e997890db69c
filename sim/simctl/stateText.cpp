#include "sim/simctl/stateText.h"

#include "apiMgmt/common/text/safeText.h"

namespace sim {

namespace {

std::string textOf(const Json& object, const char* name) {
    return text::oneLine(object.value(name, ""));
}

/// The document, every line set off from the left; line ends are the layout's own.
std::string block(const std::string& title, const Json& document) {
    std::string out = "  " + title + "\n    ";
    for (const char c : text::printable(document.get<std::string>())) {
        out += c == '\n' ? "\n    " : std::string(1, c);
    }
    return out + "\n";
}

std::string joined(const Json& list, const char* nothing) {
    std::string out;
    for (const Json& item : list) {
        out += (out.empty() ? "" : ", ") + text::oneLine(item.get<std::string>());
    }
    return out.empty() ? nothing : out;
}

std::string addressesText(const Json& addresses) {
    std::string out;
    for (const Json& address : addresses) {
        out += " " + textOf(address, "address") + ":" + std::to_string(address.value("port", 0));
    }
    return out;
}

std::string serverText(const Json& server) {
    std::string out = "    server " + textOf(server, "id") + "  " + textOf(server, "hostname") +
                      "  " + textOf(server, "osType") + " " + textOf(server, "osVersion") +
                      addressesText(server["addresses"]);
    for (const Json& interface : server["interfaces"]) {
        out += " [" + textOf(interface, "id") + " " + textOf(interface, "type") + "]";
    }
    return out + "\n";
}

std::string clusterText(const Json& cluster) {
    std::string out = "  cluster " + textOf(cluster, "id") + "  \"" + textOf(cluster, "name") +
                      "\"" + addressesText(cluster["addresses"]) +
                      (cluster.value("joined", false) ? "" : "  (expected, not joined)") + "\n";
    for (const Json& server : cluster["servers"]) {
        out += serverText(server);
    }
    return out;
}

std::string volumeText(const Json& volume) {
    const std::string attachedTo = textOf(volume, "attachedTo");
    std::string out = "  volume " + textOf(volume, "id") + "  \"" + textOf(volume, "name") + "\"";
    if (!attachedTo.empty()) {
        out += "  attached to " + attachedTo + ", data on " +
               joined(volume["availableOn"], "no server");
    }
    for (const Json& snapshot : volume["snapshots"]) {
        out += "\n    snapshot " + textOf(snapshot, "id") + "  prepared " +
               std::to_string(snapshot.value("prepared", 0)) + ", flushed " +
               std::to_string(snapshot.value("flushed", 0));
    }
    return out + "\n";
}

}  // namespace

std::string exchangeText(const Json& exchange) {
    std::string out = textOf(exchange, "summary") + "\n";
    const std::string credentials = textOf(exchange, "credentials");
    const std::string token = textOf(exchange, "authToken");
    out += "  cluster \"" + textOf(exchange, "hccId") + "\", client version \"" +
           textOf(exchange, "schemaVersion") + "\", credentials " +
           (credentials.empty() ? "none" : credentials) + ", token " +
           (token.empty() ? "none" : token) + "\n";
    return out + block("received", exchange["requestIndented"]) +
           block("sent", exchange["replyIndented"]);
}

std::string stateText(const Json& state) {
    std::string out = "array \"" + textOf(state["array"], "name") + "\"  serial number " +
                      std::to_string(state["array"].value("serialNumber", 0)) + "\n";
    for (const Json& cluster : state["clusters"]) {
        out += clusterText(cluster);
    }
    for (const Json& volume : state["volumes"]) {
        out += volumeText(volume);
    }
    return out;
}

std::string faultKindsText(const Json& kinds) {
    std::string out;
    for (const Json& kind : kinds) {
        std::string name = textOf(kind, "name");
        name.resize(std::max<std::size_t>(name.size(), 20), ' ');
        out += name + textOf(kind, "does") + "\n" + std::string(20, ' ') +
               "client: " + textOf(kind, "clientSees") + "\n";
    }
    return out;
}

std::string faultRulesText(const Json& rules) {
    std::string out;
    for (const Json& rule : rules) {
        const int count = rule.value("count", 1);
        const int after = rule.value("after", 0);
        const int forMs = rule.value("forMs", 0);
        out += "fault " + std::to_string(rule.value("id", 0)) + ": " + textOf(rule, "command") +
               " " + textOf(rule, "fault") + ", " +
               (count == 0 ? "every call" : "next " + std::to_string(count) + " call(s)") +
               (after == 0 ? "" : " after " + std::to_string(after)) +
               (forMs == 0 ? "" : " for " + std::to_string(forMs) + " ms") + "\n";
    }
    return out.empty() ? "no faults\n" : out;
}

}  // namespace sim
