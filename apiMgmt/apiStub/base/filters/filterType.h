#pragma once

/// Operator of a list-filter condition. The numbers are those of the management API; 1 and
/// everything above 8 name no operator.
enum class FILTERType : int {
    None = 0,
    Equal = 2,
    Greater = 3,
    GreaterOrEqual = 4,
    Less = 5,
    LessOrEqual = 6,
    Contains = 7,
    StartsWith = 8,
};

/// What stands for a hyphen in a condition's value: a bare one ends the condition.
inline constexpr const char* kEscapedHyphen = "&hy&";
