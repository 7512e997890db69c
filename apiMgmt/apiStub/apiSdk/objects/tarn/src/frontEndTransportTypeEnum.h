#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"

/// How a port talks to servers. Each value is a bit, so that a set of them fits one mask.
enum class FrontEndTransportTypeEnum : int {
    Unknown = 1,
    FibreChannel = 2,
    Iscsi = 4,
    Sas = 8,
};

// clang-format off
inline constexpr ENUMIdStr<FrontEndTransportTypeEnum> kFrontEndTransportTypeRows[] = {
    {FrontEndTransportTypeEnum::Unknown,      "Unknown",      "Unknown"},
    {FrontEndTransportTypeEnum::FibreChannel, "FibreChannel", "Fibre Channel"},
    {FrontEndTransportTypeEnum::Iscsi,        "Iscsi",        "iSCSI"},
    {FrontEndTransportTypeEnum::Sas,          "Sas",          "SAS"},
};
// clang-format on

inline constexpr ENUMIdStrList<FrontEndTransportTypeEnum> gFrontEndTransportTypeEnumIdStrList{
    kFrontEndTransportTypeRows, FrontEndTransportTypeEnum::Unknown};
API_ENUM_LIST(FrontEndTransportTypeEnum);
