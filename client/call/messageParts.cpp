#include "client/call/messageParts.h"

namespace client {

std::string* MessageParts::text(std::string value) {
    auto* part = make<std::string>();
    *part = std::move(value);
    return part;
}

SanApi::ns1__IpAddressPort* MessageParts::address(const Address& value) {
    auto* inet = make<SanApi::ns1__InetAddress>();
    inet->type = value.type;
    // The four members of the union are the same type and differ only in the element's name.
    switch (value.type) {
        case SanApi::ns1__InetAddressType__ipv4:
            inet->__union_InetAddress = SOAP_UNION_SanApi_ns1__union_InetAddress_ipv4Addr;
            inet->union_InetAddress.ipv4Addr = text(value.host);
            break;
        case SanApi::ns1__InetAddressType__ipv6:
            inet->__union_InetAddress = SOAP_UNION_SanApi_ns1__union_InetAddress_ipv6Addr;
            inet->union_InetAddress.ipv6Addr = text(value.host);
            break;
        case SanApi::ns1__InetAddressType__dns:
            inet->__union_InetAddress = SOAP_UNION_SanApi_ns1__union_InetAddress_dnsAddr;
            inet->union_InetAddress.dnsAddr = text(value.host);
            break;
        default:
            inet->__union_InetAddress = SOAP_UNION_SanApi_ns1__union_InetAddress_addr;
            inet->union_InetAddress.addr = text(value.host);
    }
    auto* result = make<SanApi::ns1__IpAddressPort>();
    result->ipAddress = inet;
    result->port = value.port;
    return result;
}

SanApi::ns1__interfaceObject* MessageParts::interface(const Interface& value) {
    auto* result = make<SanApi::ns1__interfaceObject>();
    result->intfId = value.id;
    if (value.type != SanApi::ns1__InterfaceType__unknown) {
        result->intfType = make<SanApi::ns1__InterfaceType>();
        *result->intfType = value.type;
    }
    return result;
}

}  // namespace client
