#include "sim/protocol/objectCommands.h"

#include <algorithm>
#include <array>
#include <iterator>

#include "sim/array/refusal.h"
#include "sim/protocol/apiRequest.h"
#include "sim/protocol/objectModel.h"
#include "sim/text/xmlText.h"

namespace sim {

namespace {

struct ObjectClass {
    std::string_view name;
    std::vector<ApiObject> (*list)(ArrayState& state);
};

struct Association {
    std::string_view object;
    std::string_view name;
    bool toMany;
    std::vector<ApiObject> (*follow)(ArrayState& state, const ApiObject& from);
};

// To add a class, give it a function that lists its objects and a row here.
constexpr std::array kClasses = {
    ObjectClass{"TarnHostCache", hostCacheObjects},
    ObjectClass{"TarnServer", serverObjects},
};

std::vector<ApiObject> serversOf(ArrayState& state, const ApiObject& hostCache) {
    std::vector<ApiObject> out = serverObjects(state);
    std::erase_if(out, [&](const ApiObject& server) {
        return server.text("HostCacheIndex") != hostCache.text("Index");
    });
    return out;
}

std::vector<ApiObject> none(ArrayState& /*state*/, const ApiObject& /*from*/) {
    return {};
}

// To add an association, give it a function that leads from one object to others and a row
// here. This array keeps no figures on usage, no multi-path state and no mapping profiles.
// clang-format off
constexpr std::array kAssociations = {
    //          from             name                  many   leads to
    Association{"TarnHostCache", "ServerList",         true,  serversOf},
    Association{"TarnServer",    "HostCache",          false, hostCacheOf},
    Association{"TarnServer",    "StorageUsage",       true,  none},
    Association{"TarnServer",    "Tarn",               false, arrayObjects},
    Association{"TarnServer",    "SaServerList",       true,  none},
    Association{"TarnServer",    "PathList",           true,  none},
    Association{"TarnServer",    "MappingProfileList", true,  none},
    Association{"TarnServer",    "MappingList",        true,  mappingObjects},
    Association{"TarnServer",    "HbaList",            true,  hbaObjects},
};
// clang-format on

std::vector<ApiObject> objectsOf(ArrayState& state, const std::string& name) {
    const auto found = std::find_if(kClasses.begin(), kClasses.end(),
                                    [&](const ObjectClass& row) { return row.name == name; });
    return found == kClasses.end() ? std::vector<ApiObject>() : found->list(state);
}

ApiObject find(ArrayState& state, const ApiRequest& request) {
    const std::string& id = request.text("InstanceId");
    for (ApiObject& object : objectsOf(state, request.object)) {
        if (object.text("InstanceId") == id) {
            return std::move(object);
        }
    }
    throw Refusal("ObjectNotFound",
                  "There is no " + request.object + " with instance id \"" + id + "\"",
                  "GetList shows the instance ids.");
}

std::string returnObjects(const std::vector<ApiObject>& objects, const ApiRequest& request,
                          bool toMany) {
    const std::string& liteText = request.text("LiteObj");
    const bool lite = liteText == "1" || liteText == "True" || liteText == "true";
    std::string content;
    for (const ApiObject& object : objects) {
        content += objectXml(object, lite);
    }
    return xmlWrap(toMany ? "ReturnObjectArray" : "ReturnObject", content);
}

}  // namespace

std::string getObject(ArrayState& state, const ApiRequest& request) {
    return returnObjects({find(state, request)}, request, false);
}

std::string getObjectList(ArrayState& state, const ApiRequest& request) {
    const ListFilter filter(request.text("Filter"));
    std::vector<ApiObject> objects = objectsOf(state, request.object);
    std::erase_if(objects,
                  [&](const ApiObject& object) { return !filter.matches(object.attributes); });
    return returnObjects(objects, request, true);
}

std::string followAssociation(ArrayState& state, const ApiRequest& request) {
    const auto row =
        std::find_if(kAssociations.begin(), kAssociations.end(), [&](const Association& a) {
            return a.object == request.object && a.name == request.command;
        });
    if (row == kAssociations.end()) {
        throw Refusal("UnknownCommand", "Association " + request.label() + " is not supported",
                      "The array simulator does not know this association.");
    }
    return returnObjects(row->follow(state, find(state, request)), request, row->toMany);
}

std::vector<std::string> associationNames() {
    std::vector<std::string> names;
    std::transform(kAssociations.begin(), kAssociations.end(), std::back_inserter(names),
                   [](const Association& row) { return commandLabel(row.object, row.name); });
    return names;
}

}  // namespace sim
