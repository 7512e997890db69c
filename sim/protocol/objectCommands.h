#pragma once

#include <string>
#include <vector>

/// The object side of the management API: reading objects, and going from one to those that
/// are related to it. The same functions serve every class; the request names it.
namespace sim {

struct ApiRequest;
class ArrayState;

/// The object of the class and instance id that the request names.
std::string getObject(ArrayState& state, const ApiRequest& request);
/// The objects of the class that the request names which its filter matches.
std::string getObjectList(ArrayState& state, const ApiRequest& request);
/// What the association that the request names leads to.
std::string followAssociation(ArrayState& state, const ApiRequest& request);

/// All associations: "TarnServer::HbaList" and so on.
std::vector<std::string> associationNames();

}  // namespace sim
