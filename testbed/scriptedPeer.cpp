#include "testbed/scriptedPeer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

#include "apiMgmt/common/ipc/ipcFraming.h"

namespace {

int listenOnFreePort(int& port) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* generic = reinterpret_cast<sockaddr*>(&address);
    if (fd < 0 || ::bind(fd, generic, size) != 0 || ::getsockname(fd, generic, &size) != 0 ||
        ::listen(fd, 64) != 0) {
        throw std::runtime_error("unable to listen on loopback");
    }
    port = ntohs(address.sin_port);
    return fd;
}

}  // namespace

ScriptedPeer::ScriptedPeer(Script script)
    : m_script(std::move(script)),
      m_listener(listenOnFreePort(m_port)),
      m_thread([this] { run(); }) {}

ScriptedPeer::~ScriptedPeer() {
    ::shutdown(m_listener, SHUT_RDWR);  // ends the accept
    m_thread.join();
    ::close(m_listener);
}

void ScriptedPeer::run() {
    while (true) {
        const int fd = ::accept4(m_listener, nullptr, nullptr, SOCK_CLOEXEC);
        if (fd >= 0) {
            // What the script sends in pieces is to arrive in pieces.
            const int on = 1;
            ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
            m_script(fd);
            ::close(fd);
        } else if (errno != EINTR && errno != ECONNABORTED) {
            return;
        }
    }
}

std::string ScriptedPeer::receive(int fd) {
    ipcFraming::FrameReader reader;
    ipcFraming::receiveFrame(fd, reader);
    return std::string(reader.body());
}

void ScriptedPeer::send(int fd, std::string_view bytes) {
    ipcFraming::sendAll(fd, bytes);
}

void ScriptedPeer::resetOnClose(int fd) {
    const linger now{1, 0};
    ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &now, sizeof(now));
}
