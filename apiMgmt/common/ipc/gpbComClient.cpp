#include "apiMgmt/common/ipc/gpbComClient.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <string_view>
#include <system_error>

#include "apiMgmt/apiStub/base/methodReturns/apiSocketError.h"
#include "apiMgmt/common/ipc/ipcFraming.h"
#include "apiMgmt/common/utils/secretText.h"
#include "apiMgmt/common/utils/stringUtil.h"
#include "apiMgmt/proto/apiMgrMsg.pb.h"

namespace {

constexpr const char* kSource = "apiMgmt/common/ipc/gpbComClient";

[[noreturn]] void fail(const GPBComEndpoint& peer, int line, const std::string& what) {
    throw APISocketError(kSource, line,
                         STRINGUtil::FormatStr("%s:%d: %s", peer.GetAddress().c_str(),
                                               peer.GetPort(), what.c_str()));
}

std::string reason(const char* what, int error) {
    // The C++ library asks strerror, whose buffer the GNU C library keeps for each thread.
    return std::string(what) + ": " + std::generic_category().message(error);
}

class Socket {
public:
    Socket() : m_fd(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {}
    ~Socket() {
        if (m_fd >= 0) {
            ::close(m_fd);
        }
    }
    Socket(const Socket&) = delete;
    Socket& operator=(const Socket&) = delete;
    int fd() const { return m_fd; }

private:
    int m_fd;
};

sockaddr_in socketAddress(const GPBComEndpoint& peer) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(peer.GetPort()));
    if (peer.GetPort() < 1 || peer.GetPort() > 65535 ||
        ::inet_pton(AF_INET, peer.GetAddress().c_str(), &address.sin_addr) != 1) {
        fail(peer, __LINE__, "Not an address and port");
    }
    return address;
}

/// Lets the request carry the last step of the handshake, which otherwise is a packet of its own
/// and wakes the peer once more. Where the system cannot do it, the packet is sent.
void acknowledgeWithRequest(int fd) {
    const int atOnce = 0;
    (void)::setsockopt(fd, IPPROTO_TCP, TCP_QUICKACK, &atOnce, sizeof(atOnce));
}

/// The outcome of a connect that a signal interrupted and that goes on by itself: 0 or errno.
int finishConnect(int fd) {
    pollfd connecting{fd, POLLOUT, 0};
    while (::poll(&connecting, 1, -1) < 0) {
        if (errno != EINTR) {
            return errno;
        }
    }
    int error = 0;
    socklen_t size = sizeof(error);
    return ::getsockopt(fd, SOL_SOCKET, SO_ERROR, &error, &size) == 0 ? error : errno;
}

/// Whether the socket met itself. While nobody listens on the peer's port, the system may give
/// just that port to an outgoing connection, which then succeeds: the usual port of the API
/// manager is one of those that it gives out.
bool metItself(const sockaddr_in& peer, int fd) {
    sockaddr_in own{};
    socklen_t size = sizeof(own);
    return ::getsockname(fd, reinterpret_cast<sockaddr*>(&own), &size) == 0 &&
           own.sin_port == peer.sin_port && own.sin_addr.s_addr == peer.sin_addr.s_addr;
}

/// Lets a connection end without the usual wait, in which nobody can listen on its port.
void forgetOnClose(int fd) {
    const linger atOnce{1, 0};
    (void)::setsockopt(fd, SOL_SOCKET, SO_LINGER, &atOnce, sizeof(atOnce));
}

[[noreturn]] void failToConnect(const GPBComEndpoint& peer, int error) {
    fail(peer, __LINE__, reason("Unable to connect", error));
}

void refuseItself(const GPBComEndpoint& peer, int fd) {
    if (metItself(socketAddress(peer), fd)) {
        forgetOnClose(fd);
        failToConnect(peer, ECONNREFUSED);
    }
}

// A request up to this size fits into what the system keeps for a socket that nobody reads.
constexpr std::size_t kMaxUnread = std::size_t{32} * 1024;

void connectTo(const GPBComEndpoint& peer, int fd) {
    const sockaddr_in address = socketAddress(peer);
    acknowledgeWithRequest(fd);
    if (::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0) {
        if (const int error = errno == EINTR ? finishConnect(fd) : errno; error != 0) {
            failToConnect(peer, error);
        }
    }
}

void receiveReply(const GPBComEndpoint& peer, int fd, std::string_view sent,
                  protoIPCMsg::GPBIPCMsg& reply) {
    ipcFraming::FrameReader reader;
    switch (ipcFraming::receiveFrame(fd, reader)) {
        case ipcFraming::ReceiveResult::complete:
            break;
        case ipcFraming::ReceiveResult::closed:
            fail(peer, __LINE__, "Connection closed before a whole reply");
        case ipcFraming::ReceiveResult::badLength:
            fail(peer, __LINE__, "Reply of a bad length");
        case ipcFraming::ReceiveResult::ioError:
            fail(peer, __LINE__, reason("Unable to receive", errno));
    }
    // The system is asked for the socket's own end only when what came back is what was sent.
    if (sent.ends_with(reader.body())) {
        refuseItself(peer, fd);
    }
    if (!ipcFraming::parseMessage(reader.body(), reply)) {
        fail(peer, __LINE__, "Reply is not a message");
    }
}

}  // namespace

GPBComClient::GPBComClient(GPBComEndpoint endpoint) : m_endpoint(std::move(endpoint)) {}

void GPBComClient::SendReceiveMessage(const protoIPCMsg::GPBIPCMsg& request,
                                      protoIPCMsg::GPBIPCMsg& reply) const {
    std::string frame;
    const SecretScope cleared(frame);
    if (!ipcFraming::encodeFrame(request, frame)) {
        fail(m_endpoint, __LINE__, "Request is empty or too long");
    }
    const Socket socket;
    if (socket.fd() < 0) {
        fail(m_endpoint, __LINE__, reason("Unable to make a socket", errno));
    }
    connectTo(m_endpoint, socket.fd());
    if (frame.size() > kMaxUnread) {
        refuseItself(m_endpoint, socket.fd());  // sending it would never end
    }
    if (!ipcFraming::sendAll(socket.fd(), frame)) {
        fail(m_endpoint, __LINE__, reason("Unable to send", errno));
    }
    receiveReply(m_endpoint, socket.fd(), frame, reply);
}
