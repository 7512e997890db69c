// Data objects that the served messages carry.
//
// How to add one: write the class here with its members in the order in which they travel.

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

/// An empty element.
class ns1__void {
};

/// An address of one of four kinds: exactly one child. Nothing ties "type" to the child that is there.
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

/// Where something listens.
class ns1__IpAddressPort {
    ns1__InetAddress*            ipAddress nullptr 1;
    ns1__InetPortNumber          port 1;
};

/// What a server runs.
class ns1__operatingSystemObject {
    std::string*                 clusterId 0;
    std::string                  osType 1;
    std::string                  osRelease 1;
};

/// Versions of the cluster's software.
class ns1__versionInformationObject {
    std::string                  apiVersion 1;
    std::string                  softwareVersion 1;
};

/// A server (host cache node) as the cluster announces it.
class ns1__hcnDiscoverableObject {
    std::string                              hccId 1;
    std::string                              hcnId 1;
    std::string*                             hostname 0;
    std::vector<ns1__IpAddressPort*>         mgmtIpAddresses 0;
    std::vector<ns1__IpAddressPort*>         cacheIpAddresses 0;
    ns1__operatingSystemObject*              os nullptr 1;
    ns1__versionInformationObject*           norvaneVersion nullptr 1;
};

/// One interface of a server to the storage.
class ns1__interfaceObject {
    std::string                  intfId 1;
    enum ns1__InterfaceType*     intfType 0;  ///< left out where the transport is unknown
};

/// The SCSI identity of a volume.
class ns1__scsiInfo {
    std::string                  deviceId 1;
    std::string*                 serialNumber 0;
};

/// The outcome of most operations. A refusal is a fault, so what arrives here says success.
class ns1__resultObject {
    int                              catalogNumber 1;  ///< number of the message in the catalogue
    std::string*                     defaultMsg 0;     ///< its text
    std::vector<std::string>         msgArgs 0;        ///< what to put into it, in order
    int                              resultCode 1;     ///< 0 for success
    std::vector<ns1__IpAddressPort*> ipAddresses 0;
};
// clang-format on
