#pragma once

#include <vector>

#include "sim/exchanges/exchange.h"
#include "sim/text/jsonNode.h"

namespace sim {

/// Compares the calls that came with what was expected of them (docs/simulator.md).
///
///     {"passed": false, "calls": 3, "complete": true, "results": [
///         {"name": "1: AddServer with HcnId \"hcn-1\"", "passed": false, "count": 0,
///          "problem": "came 0 times, expected exactly once",
///          "nearest": [{"id": 2, "summary": "...", "differs": ["HcnId is \"hcn-2\", ..."]}]}]}
///
/// `complete`: whether `calls` are all that came; a report on a part of them does not pass.
/// Throws std::runtime_error when the expectations are no good.
Json verify(const JsonNode& expectations, const std::vector<Exchange>& calls, bool complete);

/// The calls as expectations that they fit, in their order.
Json recordingOf(const std::vector<Exchange>& calls);

}  // namespace sim
