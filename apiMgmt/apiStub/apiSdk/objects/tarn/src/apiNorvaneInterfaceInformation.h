#pragma once

#include "apiMgmt/apiStub/apiSdk/objects/tarn/src/frontEndTransportTypeEnum.h"
#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"

/// One storage interface of a server: its port name and how it talks to the array. A type that
/// names no item of the list reads as Unknown.
class APINorvaneInterfaceInformation : public BASEApiMethodObject {
    API_METHOD_OBJECT(NorvaneInterfaceInformation);
    // clang-format off
    //            XML name       display name      kind                             code bounds
    API_ATTRIBUTE(InterfaceId,   "Interface Id",   STRING,                          20,  AtLeast(1));
    API_ATTRIBUTE(InterfaceType, "Interface Type", ENUM<FrontEndTransportTypeEnum>, 20);
    // clang-format on
    API_ATTRIBUTE_LIST(InterfaceId, InterfaceType);
};
