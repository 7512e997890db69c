#pragma once

#include "apiMgmt/common/ipc/gpbComEndpoint.h"

namespace protoIPCMsg {
class GPBIPCMsg;
}

/// Exchanges messages with one peer, each exchange on a connection of its own.
///
///     GPBComClient client(GENERALUtils::GetEndpoint(APIManagerEndpoint));
///     client.SendReceiveMessage(request, reply);
///
/// It holds nothing between exchanges and may be used from several threads.
class GPBComClient {
public:
    explicit GPBComClient(GPBComEndpoint endpoint);

    /// Connects, sends `request`, waits without limit for the reply, closes. Replaces what
    /// `reply` held. Signals do not interrupt it and it raises no SIGPIPE.
    /// Raises APISocketError, which names the peer and what failed: not listening, closed
    /// before a whole reply, a reply of a bad length or that is no GPBIPCMsg, a request that
    /// is empty or longer than a frame may be. What `reply` holds is then open.
    void SendReceiveMessage(const protoIPCMsg::GPBIPCMsg& request,
                            protoIPCMsg::GPBIPCMsg& reply) const;

private:
    GPBComEndpoint m_endpoint;
};
