#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// Health of a part of the array.
enum class StatusEnum : int {
    Unknown = 0,
    Up = 1,
    Down = 2,
    Degraded = 3,
};

// clang-format off
inline constexpr ENUMIdStr<StatusEnum> kStatusRows[] = {
    {StatusEnum::Unknown,  "Unknown",  "Unknown"},
    {StatusEnum::Up,       "Up",       "Up"},
    {StatusEnum::Down,     "Down",     "Down"},
    {StatusEnum::Degraded, "Degraded", "Degraded"},
};
// clang-format on

inline constexpr ENUMIdStrList<StatusEnum> gStatusEnumIdStrList{kStatusRows, StatusEnum::Unknown};
API_ENUM_LIST(StatusEnum);
