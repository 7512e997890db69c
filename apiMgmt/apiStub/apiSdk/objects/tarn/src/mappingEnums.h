#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// Which hosts a volume is mapped to when the server of the mapping is a virtual one.
enum class VirtualServerMappingEnum : int {
    Default = 0,
    VirtualServer = 1,
    HostServer = 2,
    Both = 3,
};

// clang-format off
inline constexpr ENUMIdStr<VirtualServerMappingEnum> kVirtualServerMappingRows[] = {
    {VirtualServerMappingEnum::Default,       "Default",       "Default"},
    {VirtualServerMappingEnum::VirtualServer, "VirtualServer", "Virtual Server"},
    {VirtualServerMappingEnum::HostServer,    "HostServer",    "Host Server"},
    {VirtualServerMappingEnum::Both,          "Both",          "Virtual Server and Host Server"},
};
// clang-format on

inline constexpr ENUMIdStrList<VirtualServerMappingEnum> gVirtualServerMappingEnumIdStrList{
    kVirtualServerMappingRows, VirtualServerMappingEnum::Default};
API_ENUM_LIST(VirtualServerMappingEnum);
