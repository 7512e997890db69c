#pragma once

#include <string>
#include <string_view>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"

namespace client {

/// An address as the messages carry it.
struct Address {
    SanApi::ns1__InetAddressType type;
    std::string host;
    unsigned short port;
};

/// A storage-facing interface of a server.
struct Interface {
    std::string id;
    /// unknown when the text names no transport.
    SanApi::ns1__InterfaceType type;
};

/// Reads "10.0.0.5:3260", "[fe80::1]:3260" or "node1.example.com:3260"; what the host looks like
/// picks the type. An IPv6 address needs its brackets. Raises std::invalid_argument with a
/// sentence that says what is wrong.
Address parseAddress(std::string_view text);

/// Whether no name has to be looked up.
bool isNumericAddress(const std::string& host);

/// Reads "ID", "ID:fc", "ID:iscsi" or "ID:unknown". An id may itself hold colons: that of a
/// world-wide name of eight octets or of an iSCSI name (iqn., eui., naa.) may stand alone; behind
/// the last colon of any other stands a transport. Raises std::invalid_argument.
Interface parseInterface(std::string_view text);

}  // namespace client
