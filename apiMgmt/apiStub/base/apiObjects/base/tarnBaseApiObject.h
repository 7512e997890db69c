#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiObject.h"

/// An object that belongs to one array.
class TARNBaseApiObject : public BASEApiObject {
    // clang-format off
    //            XML name          display name  kind  code bounds
    API_ATTRIBUTE(TarnName,         "Tarn",       NAME, 25,  AtLeast(1));
    API_ATTRIBUTE(TarnSerialNumber, "Tarn SN",    INT,  25,  Unbounded);
    // clang-format on
    API_ATTRIBUTE_LIST_THEN(BASEApiObject, TarnName, TarnSerialNumber);
};
