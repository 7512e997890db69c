#pragma once

#include <span>
#include <stdexcept>
#include <string>

#include "sim/text/jsonText.h"

namespace httplib {
struct Request;
}

namespace sim {

class Simulator;

/// Where the interface begins on every server that offers it.
constexpr const char* kApiRoot = "/api/v1";

/// What the request asks for is not there: an answer of 404.
class NotFound : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// One request of the HTTP interface.
struct ApiRoute {
    const char* method;
    const char* path;  // below kApiRoot; "{id}" stands for a number
    /// Does the work and gives the answer. Throws NotFound, or std::runtime_error for a request
    /// that is wrong.
    Json (*answer)(Simulator& simulator, const httplib::Request& request);
};

std::span<const ApiRoute> apiRoutes();

}  // namespace sim
