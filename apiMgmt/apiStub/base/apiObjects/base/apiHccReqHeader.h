#pragma once

#include <string>

/// The identity of the host-cache cluster on whose behalf a request is made. It accompanies
/// every call of the management API that the request leads to, and lives as long as it.
struct APIHccReqHeader {
    std::string schemaVersion;  ///< that the client speaks, such as "2.3"
    std::string credentials;    ///< decoded; any octets
    std::string authToken;
    std::string hccId;          ///< the cluster's id
    std::string clientAddress;  ///< IP address of the client, as text
    std::string localAddress;   ///< IP address of the connection's own end; not sent on
};
