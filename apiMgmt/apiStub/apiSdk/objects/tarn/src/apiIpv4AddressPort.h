#pragma once

#include "apiMgmt/apiStub/base/apiObjects/base/baseApiMethodObject.h"

/// A management or storage address of a cluster or of one of its servers.
///
///     APIIpv4AddressPort address;
///     address.SetIpv4Address("10.0.0.5");   // what is no such address becomes 0.0.0.0
///     address.SetPort(3260);
class APIIpv4AddressPort : public BASEApiMethodObject {
    API_METHOD_OBJECT(Ipv4AddressPort);
    // clang-format off
    //            XML name     display name    kind         code bounds
    API_ATTRIBUTE(Ipv4Address, "IPv4 Address", IPV4ADDRESS, 20);
    API_ATTRIBUTE(Port,        "Port",         INT,         20,  AtLeast(0));
    // clang-format on
    API_ATTRIBUTE_LIST(Ipv4Address, Port);
};
