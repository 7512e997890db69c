#pragma once

#include <map>
#include <string>
#include <string_view>

#include "client/report/replyJson.h"

namespace client {

/// What a service has counted of one operation.
struct OperationCounts {
    std::map<std::string, double> outcomes;  ///< Calls by how they ended.
    std::map<double, double> buckets;        ///< Calls that took at most so many seconds.
    double inProgress = 0;
};

/// What the plug-in at one location has counted.
struct ServiceCounts {
    std::map<std::string, OperationCounts> operations;
    double oldestSeconds = 0;  ///< Age of the oldest call at work.
    double waitingForArray = 0;
    bool arrayAnswers = true;
};

/// By location.
using Snapshot = std::map<std::string, ServiceCounts>;

/// Reads the answer of the status handler. Empty when the text holds no counts of a service.
Snapshot readSnapshot(std::string_view text);

/// What happened between two looks that are so many seconds apart, and since the start of the
/// server. A server that was started anew in between counts from nothing.
Json activityOf(const Snapshot& before, const Snapshot& now, double seconds);

/// The same for people: a table a service, one line an operation.
std::string activityTable(const Json& activity);

}  // namespace client
