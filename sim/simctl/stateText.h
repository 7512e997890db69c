#pragma once

#include <string>

#include "sim/text/jsonText.h"

/// What the simulator tells the control command, laid out for people. Each takes a part of the
/// simulator's JSON and gives whole lines; no control character of any value is among them.
namespace sim {

std::string exchangeText(const Json& exchange);
std::string stateText(const Json& state);
std::string faultKindsText(const Json& kinds);
std::string faultRulesText(const Json& rules);

}  // namespace sim
