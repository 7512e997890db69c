#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// The least privilege that an API method requires.
enum class UserPrivilegeEnum : int {
    Admin = 1,
    VolumeManager = 2,
    Reporter = 3,
};

// clang-format off
inline constexpr ENUMIdStr<UserPrivilegeEnum> kUserPrivilegeRows[] = {
    {UserPrivilegeEnum::Admin,         "Admin",         "Administrator"},
    {UserPrivilegeEnum::VolumeManager, "VolumeManager", "Volume Manager"},
    {UserPrivilegeEnum::Reporter,      "Reporter",      "Reporter"},
};
// clang-format on

inline constexpr ENUMIdStrList<UserPrivilegeEnum> gUserPrivilegeEnumIdStrList{
    kUserPrivilegeRows, UserPrivilegeEnum::Reporter};
API_ENUM_LIST(UserPrivilegeEnum);
