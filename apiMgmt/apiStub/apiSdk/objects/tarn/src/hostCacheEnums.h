#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// Whether the array reaches the management address of a host cache.
enum class HostCacheConnectivityStatusEnum : int {
    Unknown = 0,
    Connected = 1,
    PartiallyConnected = 2,
    Disconnected = 3,
};

// clang-format off
inline constexpr ENUMIdStr<HostCacheConnectivityStatusEnum> kHostCacheConnectivityStatusRows[] = {
    {HostCacheConnectivityStatusEnum::Unknown,            "Unknown",            "Unknown"},
    {HostCacheConnectivityStatusEnum::Connected,          "Connected",          "Connected"},
    {HostCacheConnectivityStatusEnum::PartiallyConnected, "PartiallyConnected", "Partially Connected"},
    {HostCacheConnectivityStatusEnum::Disconnected,       "Disconnected",       "Disconnected"},
};
// clang-format on

inline constexpr ENUMIdStrList<HostCacheConnectivityStatusEnum>
    gHostCacheConnectivityStatusEnumIdStrList{kHostCacheConnectivityStatusRows,
                                              HostCacheConnectivityStatusEnum::Unknown};
API_ENUM_LIST(HostCacheConnectivityStatusEnum);

/// What a host cache does with writes to a mapped volume.
enum class HostCachePolicyEnum : int {
    Disabled = 0,
    ReadOnly = 1,
    WriteThrough = 2,
    WriteBack = 3,
};

// clang-format off
inline constexpr ENUMIdStr<HostCachePolicyEnum> kHostCachePolicyRows[] = {
    {HostCachePolicyEnum::Disabled,     "Disabled",     "Disabled"},
    {HostCachePolicyEnum::ReadOnly,     "ReadOnly",     "Read Only"},
    {HostCachePolicyEnum::WriteThrough, "WriteThrough", "Write Through"},
    {HostCachePolicyEnum::WriteBack,    "WriteBack",    "Write Back"},
};
// clang-format on

inline constexpr ENUMIdStrList<HostCachePolicyEnum> gHostCachePolicyEnumIdStrList{
    kHostCachePolicyRows, HostCachePolicyEnum::Disabled};
API_ENUM_LIST(HostCachePolicyEnum);

/// On how many nodes of the cluster data that is not yet on the array is kept.
enum class HostCacheDataPolicyEnum : int {
    Default = 0,
    SingleCopy = 1,
    Mirrored = 2,
};

// clang-format off
inline constexpr ENUMIdStr<HostCacheDataPolicyEnum> kHostCacheDataPolicyRows[] = {
    {HostCacheDataPolicyEnum::Default,    "Default",    "Default"},
    {HostCacheDataPolicyEnum::SingleCopy, "SingleCopy", "Single Copy"},
    {HostCacheDataPolicyEnum::Mirrored,   "Mirrored",   "Mirrored"},
};
// clang-format on

inline constexpr ENUMIdStrList<HostCacheDataPolicyEnum> gHostCacheDataPolicyEnumIdStrList{
    kHostCacheDataPolicyRows, HostCacheDataPolicyEnum::Default};
API_ENUM_LIST(HostCacheDataPolicyEnum);
