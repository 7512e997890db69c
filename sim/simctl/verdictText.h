#pragma once

#include <string>

#include "sim/text/jsonText.h"

namespace sim {

/// What a verification found, for people: a line for each expectation and rule, and for each that
/// failed the nearest calls and what differs.
std::string verdictText(const Json& verdict);

/// The same as a JUnit report, a test case for each expectation and rule.
std::string verdictJunit(const Json& verdict, const std::string& suite);

}  // namespace sim
