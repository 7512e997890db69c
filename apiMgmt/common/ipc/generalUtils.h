#pragma once

#include "apiMgmt/common/ipc/gpbComEndpoint.h"

/// The peers that a GPBComClient can be made for.
enum APIEndpoint {
    APIManagerEndpoint = 0,  // the array's API manager
};

class GENERALUtils {
public:
    /// Where `endpoint` listens: 127.0.0.1 and, for the API manager, the port of
    /// getApiMgrPort(). Raises APISocketError for an endpoint that does not exist.
    static GPBComEndpoint GetEndpoint(APIEndpoint endpoint);
};
