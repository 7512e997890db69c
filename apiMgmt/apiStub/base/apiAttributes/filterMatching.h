#pragma once

#include <compare>
#include <string>

#include "apiMgmt/apiStub/base/filters/filterType.h"

class APIAttributeFilter;

/// The rules by which attribute kinds evaluate a condition. The attribute's value stands on the
/// left of the operator.

/// Whether two values that compare as `order` satisfy an operator from 2 ("=") to 6 ("<=");
/// false for every other operator.
bool matchesOrder(FILTERType type, std::weak_ordering order);

/// Text against the condition's text, ignoring case: the operators of matchesOrder, and
/// "iqin" (the value contains the condition's text) and "iqs" (the value begins with it).
/// "&hy&" in the condition stands for a hyphen. An empty value never matches.
bool matchesText(const APIAttributeFilter& filter, const std::string& value);

/// The condition's comparison value with every "&hy&" turned back into a hyphen.
std::string filterText(const APIAttributeFilter& filter);
