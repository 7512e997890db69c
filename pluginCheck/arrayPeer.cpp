#include "pluginCheck/arrayPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <sys/time.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <string>
#include <string_view>
#include <system_error>

namespace {

constexpr std::string_view kDocument =
    "<compapi><ApiMethodReturn><Error></Error><ErrorCode>NoError</ErrorCode>"
    "<ErrorDetail></ErrorDetail><LocalizedError></LocalizedError><Successful>True</Successful>"
    "<ReturnBool>True</ReturnBool></ApiMethodReturn></compapi>";

// A field of apiMgmt/proto/apiMgrMsg.proto, written by hand so that this program has no need of the
// library: a plug-in that has to bring it must not find it here.
std::string field(int number, std::string_view content) {
    std::string bytes(1, static_cast<char>(number << 3 | 2));
    std::size_t size = content.size();
    for (; size > 0x7F; size >>= 7) {
        bytes += static_cast<char>((size & 0x7F) | 0x80);
    }
    bytes += static_cast<char>(size);
    return bytes.append(content);
}

std::string field(int number, int value) {
    return {static_cast<char>(number << 3), static_cast<char>(value)};
}

// An IPC_API_RESPONSE to an API_COMMAND.
std::string replyFrame() {
    const std::string body = field(1, 3) + field(4, field(1, 1) + field(2, field(1, kDocument)));
    const std::uint32_t size = htonl(static_cast<std::uint32_t>(body.size()));
    return std::string(reinterpret_cast<const char*>(&size), sizeof(size)) + body;
}

bool receiveFrame(int fd) {
    std::uint32_t length = 0;
    if (::recv(fd, &length, sizeof(length), MSG_WAITALL) != sizeof(length)) {
        return false;
    }
    char piece[4096];
    for (std::size_t left = ntohl(length); left > 0;) {
        const ssize_t came = ::recv(fd, piece, std::min(left, sizeof(piece)), 0);
        if (came <= 0) {
            return false;
        }
        left -= static_cast<std::size_t>(came);
    }
    return true;
}

}  // namespace

ArrayPeer::ArrayPeer() : m_listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (m_listener < 0 || ::bind(m_listener, generic, size) != 0 ||
        ::getsockname(m_listener, generic, &size) != 0 || ::listen(m_listener, SOMAXCONN) != 0) {
        throw std::system_error(errno, std::generic_category(), "unable to listen on loopback");
    }
    m_port = ntohs(address.sin_port);
}

ArrayPeer::~ArrayPeer() {
    ::close(m_listener);
}

void ArrayPeer::answer(int seconds) {
    const int fd = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
    if (fd < 0) {
        return;
    }
    ++m_calls;
    const timeval limit{.tv_sec = seconds, .tv_usec = 0};
    ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit));
    if (receiveFrame(fd)) {
        const std::string reply = replyFrame();
        ::send(fd, reply.data(), reply.size(), MSG_NOSIGNAL);
    }
    ::close(fd);
}
