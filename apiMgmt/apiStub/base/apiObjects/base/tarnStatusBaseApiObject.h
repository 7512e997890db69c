#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/statusEnum.h"
#include "apiMgmt/apiStub/base/apiObjects/base/tarnBaseApiObject.h"

/// An object of an array whose health is watched.
class TARNStatusBaseApiObject : public TARNBaseApiObject {
    // clang-format off
    //            XML name       display name      kind              code bounds
    API_ATTRIBUTE(Status,        "Status",         ENUM<StatusEnum>, 25);
    API_ATTRIBUTE(ChildStatus,   "Child Status",   ENUM<StatusEnum>, 25);
    API_ATTRIBUTE(StatusMessage, "Status Message", STRING,           32,  Unbounded);
    // clang-format on
    API_ATTRIBUTE_LIST_THEN(TARNBaseApiObject, Status, ChildStatus, StatusMessage);
};
