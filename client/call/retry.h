#pragma once

#include <functional>
#include <string_view>

#include "client/call/outcome.h"
#include "client/call/serviceOptions.h"
#include "client/call/stop.h"

namespace client {

/// Whether a call that may have been done already can be made again without harm: the array then
/// is as after one call, and does not refuse the second for the sake of the first.
bool mayBeRepeated(std::string_view operation);

/// Makes a call, and again as the plan says while nobody answers or the outcome is unknown. A
/// call that may not be repeated is repeated only when it surely was not done, or by force.
/// Gives the last outcome, in which `attempts` and `mayHaveBeenDone` are those of all.
Outcome withRetries(const RetryPlan& plan, std::string_view operation, const Stop& stop,
                    const std::function<Outcome()>& call);

}  // namespace client
