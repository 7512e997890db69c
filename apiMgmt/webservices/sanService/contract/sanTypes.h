// Data objects that the served messages carry.
//
// How to add one: write the class here with its members in the order in which they travel, and
// the same in sanApi.wsdl; a test compares both.

// clang-format off
// Restricted texts; nothing is enforced beyond the base type.
typedef std::string    ns1__InetAddressIPv4;
typedef std::string    ns1__InetAddressIPv6;
typedef std::string    ns1__InetAddressDNS;
typedef std::string    ns1__InetAddressUnknown;
typedef unsigned short ns1__InetPortNumber;

// Octets; the context owns them, and no zero follows them.
class xsd__base64Binary {
    unsigned char* __ptr;
    int            __size;
};

// An empty element.
class ns1__void {
};

// An address of one of four kinds. Nothing ties "type" to the element that is chosen.
class ns1__InetAddress {
    @enum ns1__InetAddressType   type 1;
    $int                         __union_InetAddress;
    union ns1__union_InetAddress {
        ns1__InetAddressIPv4*    ipv4Addr;
        ns1__InetAddressIPv6*    ipv6Addr;
        ns1__InetAddressDNS*     dnsAddr;
        ns1__InetAddressUnknown* addr;
    }                            union_InetAddress;
};

class ns1__IpAddressPort {
    ns1__InetAddress*            ipAddress nullptr 1;
    ns1__InetPortNumber          port 1;
};

class ns1__operatingSystemObject {
    std::string*                 clusterId 0;
    std::string                  osType 1;
    std::string                  osRelease 1;
};

class ns1__versionInformationObject {
    std::string                  apiVersion 1;
    std::string                  softwareVersion 1;
};

// A host cache node as the cluster announces it.
class ns1__hcnDiscoverableObject {
    std::string                              hccId 1;
    std::string                              hcnId 1;
    std::string*                             hostname 0;
    std::vector<ns1__IpAddressPort*>         mgmtIpAddresses 0;
    std::vector<ns1__IpAddressPort*>         cacheIpAddresses 0;
    ns1__operatingSystemObject*              os nullptr 1;
    ns1__versionInformationObject*           norvaneVersion nullptr 1;
};

// One storage-facing interface of a node. Without intfType no transport type is known.
class ns1__interfaceObject {
    std::string                  intfId 1;
    enum ns1__InterfaceType*     intfType 0;
};

// The SCSI identity of a volume.
class ns1__scsiInfo {
    std::string                  deviceId 1;
    std::string*                 serialNumber 0;
};

// The outcome of most operations.
class ns1__resultObject {
    int                              catalogNumber 1;
    std::string*                     defaultMsg 0;
    std::vector<std::string>         msgArgs 0;
    int                              resultCode 1;
    std::vector<ns1__IpAddressPort*> ipAddresses 0;
};
// clang-format on
