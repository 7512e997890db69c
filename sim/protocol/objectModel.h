#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "sim/array/arrayState.h"
#include "sim/protocol/listFilter.h"

/// The state as objects of the management API.
namespace sim {

struct ApiObject {
    std::string type;
    Attributes attributes;
    std::int64_t number = 0;  // of its row in the state

    const std::string& text(std::string_view name) const;
};

std::vector<ApiObject> hostCacheObjects(ArrayState& state);
std::vector<ApiObject> serverObjects(ArrayState& state);

/// What an association of a server leads to.
std::vector<ApiObject> hbaObjects(ArrayState& state, const ApiObject& server);
std::vector<ApiObject> mappingObjects(ArrayState& state, const ApiObject& server);
std::vector<ApiObject> arrayObjects(ArrayState& state, const ApiObject& server);
std::vector<ApiObject> hostCacheOf(ArrayState& state, const ApiObject& server);

/// The object's element. A lite request gets the three attributes that identify it.
std::string objectXml(const ApiObject& object, bool lite);

}  // namespace sim
