#pragma once

#include "apiMgmt/apiStub/base/apiAttributes/enumIdStrList.h"
#include "apiMgmt/apiStub/base/methodReturns/errorStateEnum.h"

// One row for each value of ErrorStateEnum: the name that a reply's error code carries, and what
// an administrator reads.
// clang-format off
inline constexpr ENUMIdStr<ErrorStateEnum> kErrorStateRows[] = {
    {ErrorStateEnum::Unknown,               "Unknown",               "Unknown"},
    {ErrorStateEnum::NoError,               "NoError",               "No Error"},
    {ErrorStateEnum::InternalError,         "InternalError",         "Internal Error"},
    {ErrorStateEnum::UnknownCommand,        "UnknownCommand",        "Unknown Command"},
    {ErrorStateEnum::ParsingError,          "ParsingError",          "Parsing Error"},
    {ErrorStateEnum::ConnectionError,       "ConnectionError",       "Connection Error"},
    {ErrorStateEnum::Timeout,               "Timeout",               "Timeout"},
    {ErrorStateEnum::NotLoggedIn,           "NotLoggedIn",           "Not Logged In"},
    {ErrorStateEnum::InvalidRequest,        "InvalidRequest",        "Invalid Request"},
    {ErrorStateEnum::InvalidCredentials,    "InvalidCredentials",    "Invalid Credentials"},
    {ErrorStateEnum::CommandFailed,         "CommandFailed",         "Command Failed"},
    {ErrorStateEnum::InsufficientPrivilege, "InsufficientPrivilege", "Insufficient Privilege"},
    {ErrorStateEnum::SessionExpired,        "SessionExpired",        "Session Expired"},
    {ErrorStateEnum::VersionNotSupported,   "VersionNotSupported",   "Version Not Supported"},
    {ErrorStateEnum::NotSupported,          "NotSupported",          "Not Supported"},
    {ErrorStateEnum::NotLicensed,           "NotLicensed",           "Not Licensed"},
    {ErrorStateEnum::ObjectNotFound,        "ObjectNotFound",        "Object Not Found"},
    {ErrorStateEnum::ObjectAlreadyExists,   "ObjectAlreadyExists",   "Object Already Exists"},
    {ErrorStateEnum::ObjectInUse,           "ObjectInUse",           "Object In Use"},
    {ErrorStateEnum::ObjectLocked,          "ObjectLocked",          "Object Locked"},
    {ErrorStateEnum::InvalidState,          "InvalidState",          "Invalid State"},
    {ErrorStateEnum::SystemBusy,            "SystemBusy",            "System Busy"},
    {ErrorStateEnum::ControllerUnavailable, "ControllerUnavailable", "Controller Unavailable"},
    {ErrorStateEnum::InsufficientSpace,     "InsufficientSpace",     "Insufficient Space"},
    {ErrorStateEnum::LimitExceeded,         "LimitExceeded",         "Limit Exceeded"},
    {ErrorStateEnum::InvalidValue,          "InvalidValue",          "Invalid Value"},
    {ErrorStateEnum::MissingValue,          "MissingValue",          "Missing Value"},
    {ErrorStateEnum::DuplicateValue,        "DuplicateValue",        "Duplicate Value"},
    {ErrorStateEnum::ValueOutOfRange,       "ValueOutOfRange",       "Value Out Of Range"},
    {ErrorStateEnum::ReadOnlyValue,         "ReadOnlyValue",         "Read Only Value"},
    {ErrorStateEnum::InvalidArguments,      "InvalidArguments",      "Invalid Arguments"},
};
// clang-format on

inline constexpr ENUMIdStrList<ErrorStateEnum> gErrorStateEnumIdStrList{kErrorStateRows,
                                                                        ErrorStateEnum::Unknown};
API_ENUM_LIST(ErrorStateEnum);
