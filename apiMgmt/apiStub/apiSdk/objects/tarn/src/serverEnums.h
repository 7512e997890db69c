#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// How many of the paths between a server and the array's controllers work.
enum class ServerConnectivityEnum : int {
    Unknown = 0,
    Up = 1,
    Partial = 2,
    Down = 3,
};

// clang-format off
inline constexpr ENUMIdStr<ServerConnectivityEnum> kServerConnectivityRows[] = {
    {ServerConnectivityEnum::Unknown, "Unknown", "Unknown"},
    {ServerConnectivityEnum::Up,      "Up",      "Up"},
    {ServerConnectivityEnum::Partial, "Partial", "Partially Connected"},
    {ServerConnectivityEnum::Down,    "Down",    "Down"},
};
// clang-format on

inline constexpr ENUMIdStrList<ServerConnectivityEnum> gServerConnectivityEnumIdStrList{
    kServerConnectivityRows, ServerConnectivityEnum::Unknown};
API_ENUM_LIST(ServerConnectivityEnum);

/// What kind of host a server is to the array.
enum class ServerTypeEnum : int {
    Unknown = 0,
    Physical = 1,
    Virtual = 2,
    Cluster = 3,
    VirtualCluster = 4,
    Remote = 5,
    HostCache = 6,
};

// clang-format off
inline constexpr ENUMIdStr<ServerTypeEnum> kServerTypeRows[] = {
    {ServerTypeEnum::Unknown,        "Unknown",        "Unknown"},
    {ServerTypeEnum::Physical,       "Physical",       "Physical Server"},
    {ServerTypeEnum::Virtual,        "Virtual",        "Virtual Server"},
    {ServerTypeEnum::Cluster,        "Cluster",        "Server Cluster"},
    {ServerTypeEnum::VirtualCluster, "VirtualCluster", "Virtual Server Cluster"},
    {ServerTypeEnum::Remote,         "Remote",         "Remote Array"},
    {ServerTypeEnum::HostCache,      "HostCache",      "Host Cache"},
};
// clang-format on

inline constexpr ENUMIdStrList<ServerTypeEnum> gServerTypeEnumIdStrList{kServerTypeRows,
                                                                        ServerTypeEnum::Unknown};
API_ENUM_LIST(ServerTypeEnum);
