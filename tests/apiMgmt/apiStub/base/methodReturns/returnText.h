#pragma once

#include <string>

class BASEApiMethodReturn;

/// A return in one line, for tables of expectations: its kind and value, as in "bool True" or
/// "objects[] TarnHostCache{Name=a}", or "failed STATE|error|localized error|detail".
std::string returnText(const BASEApiMethodReturn& outcome);
