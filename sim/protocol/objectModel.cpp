#include "sim/protocol/objectModel.h"

#include <algorithm>
#include <array>

#include "sim/text/xmlText.h"

namespace sim {

namespace {

constexpr std::array<std::string_view, 3> kLiteAttributes = {"InstanceId", "InstanceName",
                                                             "ObjectType"};

std::string textOf(const Row& row, const char* column) {
    return row[column].get<std::string>();
}
std::string countOf(const Row& row, const char* column) {
    return std::to_string(row[column].get<std::int64_t>());
}
std::string boolText(bool value) {
    return value ? "True" : "False";
}

/// "101.5": the array's serial number and the object's own.
std::string instanceId(const Row& array, std::int64_t number) {
    return countOf(array, "serialNumber") + "." + std::to_string(number);
}

/// The attributes that every object ends with.
void addBase(ApiObject& object, const Row& array, const std::string& name) {
    const Attributes base = {
        {"Status", "Up"},
        {"ChildStatus", "Up"},
        {"StatusMessage", ""},
        {"TarnName", textOf(array, "name")},
        {"TarnSerialNumber", countOf(array, "serialNumber")},
        {"InstanceId", instanceId(array, object.number)},
        {"InstanceName", name},
        {"ObjectType", object.type},
    };
    object.attributes.insert(object.attributes.end(), base.begin(), base.end());
}

ApiObject plainObject(const Row& array, std::string type, std::int64_t number,
                      const std::string& name) {
    ApiObject object{std::move(type), {{"Name", name}}, number};
    addBase(object, array, name);
    return object;
}

ApiObject hostCacheObject(const Row& array, const Row& row) {
    ApiObject object{"TarnHostCache", {}, row["n"].get<std::int64_t>()};
    object.attributes = {
        {"HostCacheConnectivityStatus", "Connected"},
        {"HostCacheId", textOf(row, "id")},
        {"Managed", "True"},
        {"ManagementIpAddress", textOf(row, "address")},
        {"ManagementPort", countOf(row, "port")},
        {"Index", countOf(row, "n")},
        {"Mapped", boolText(row["volumes"] > 0)},
        {"Name", textOf(row, "name")},
        {"VolumeCount", countOf(row, "volumes")},
    };
    addBase(object, array, textOf(row, "name"));
    return object;
}

/// The transports of a server's interfaces, each once, as a mask.
std::string portTypes(ArrayState& state, std::int64_t server) {
    std::string mask;
    for (const Row& interface : state.interfaces(server)) {
        const auto type = textOf(interface, "type");
        if (!type.empty() && (" " + mask + " ").find(" " + type + " ") == std::string::npos) {
            mask += (mask.empty() ? "" : " ") + type;
        }
    }
    return mask;
}

ApiObject serverObject(ArrayState& state, const Row& array, const Row& row) {
    ApiObject object{"TarnServer", {}, row["n"].get<std::int64_t>()};
    const std::string hostname = textOf(row, "hostname");
    const std::string name = hostname.empty() ? textOf(row, "id") : hostname;
    const std::string hostCache = instanceId(array, row["clusterNumber"].get<std::int64_t>());
    object.attributes = {
        {"AlertOnConnectivity", "True"},
        {"ConnectedToAllControllers", "True"},
        {"Connectivity", "Up"},
        {"DeleteAllowed", "False"},
        {"HbaCount", countOf(row, "interfaces")},
        {"HbaPresent", boolText(row["interfaces"] > 0)},
        {"HostCache", hostCache + " TarnHostCache " + textOf(row, "clusterName")},
        {"HostCacheIndex", countOf(row, "clusterNumber")},
        {"Index", countOf(row, "n")},
        {"Mapped", boolText(row["volumes"] > 0)},
        {"Name", name},
        {"PathCount", countOf(row, "interfaces")},
        {"PortType", portTypes(state, object.number)},
        {"VolumeCount", countOf(row, "volumes")},
    };
    addBase(object, array, name);
    return object;
}

}  // namespace

const std::string& ApiObject::text(std::string_view name) const {
    static const std::string kNothing;
    const auto found = std::find_if(attributes.begin(), attributes.end(),
                                    [&](const auto& entry) { return entry.first == name; });
    return found == attributes.end() ? kNothing : found->second;
}

std::vector<ApiObject> hostCacheObjects(ArrayState& state) {
    std::vector<ApiObject> out;
    const Row array = state.array();
    for (const Row& row : state.hostCaches()) {
        out.push_back(hostCacheObject(array, row));
    }
    return out;
}

std::vector<ApiObject> serverObjects(ArrayState& state) {
    std::vector<ApiObject> out;
    const Row array = state.array();
    for (const Row& row : state.servers()) {
        out.push_back(serverObject(state, array, row));
    }
    return out;
}

std::vector<ApiObject> hbaObjects(ArrayState& state, const ApiObject& server) {
    std::vector<ApiObject> out;
    std::int64_t number = 0;
    for (const Row& row : state.interfaces(server.number)) {
        out.push_back(plainObject(state.array(), "TarnServerHba", ++number, textOf(row, "id")));
    }
    return out;
}

std::vector<ApiObject> mappingObjects(ArrayState& state, const ApiObject& server) {
    std::vector<ApiObject> out;
    for (const Row& row : state.mappings(server.number)) {
        out.push_back(plainObject(state.array(), "TarnMapping", row["n"].get<std::int64_t>(),
                                  textOf(row, "name")));
    }
    return out;
}

std::vector<ApiObject> arrayObjects(ArrayState& state, const ApiObject& /*server*/) {
    const Row array = state.array();
    return {plainObject(array, "Tarn", 0, textOf(array, "name"))};
}

std::vector<ApiObject> hostCacheOf(ArrayState& state, const ApiObject& server) {
    std::vector<ApiObject> out = hostCacheObjects(state);
    std::erase_if(out, [&](const ApiObject& object) {
        return object.text("Index") != server.text("HostCacheIndex");
    });
    return out;
}

std::string objectXml(const ApiObject& object, bool lite) {
    std::string content;
    for (const auto& [name, text] : object.attributes) {
        if (!lite || std::find(kLiteAttributes.begin(), kLiteAttributes.end(), name) !=
                         kLiteAttributes.end()) {
            content += xmlElement(name, text);
        }
    }
    return xmlWrap(object.type, content);
}

}  // namespace sim
