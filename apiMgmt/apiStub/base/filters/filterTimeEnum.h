#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// How far back a historical query reaches; Other means that its times say so.
enum class FilterTimeEnum : int {
    Other = 0,
    LastDay = 1,
    LastWeek = 2,
    LastMonth = 3,
};

// clang-format off
inline constexpr ENUMIdStr<FilterTimeEnum> kFilterTimeRows[] = {
    {FilterTimeEnum::Other,     "Other",     "Other"},
    {FilterTimeEnum::LastDay,   "LastDay",   "Last Day"},
    {FilterTimeEnum::LastWeek,  "LastWeek",  "Last Week"},
    {FilterTimeEnum::LastMonth, "LastMonth", "Last Month"},
};
// clang-format on

inline constexpr ENUMIdStrList<FilterTimeEnum> gFilterTimeEnumIdStrList{kFilterTimeRows,
                                                                        FilterTimeEnum::Other};
API_ENUM_LIST(FilterTimeEnum);
