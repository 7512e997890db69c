#include "sim/wire/ipcServer.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/epoll.h>
#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <system_error>

namespace sim {

namespace {

[[noreturn]] void fail(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

void allowManyDescriptors() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 2 * IpcServer::maxConnections);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

int tcpSocket(int flags) {
    const int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC | flags, 0);
    if (fd < 0) {
        fail("socket");
    }
    return fd;
}

sockaddr_in loopback(int port) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(port));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return address;
}

int listenOnLoopback(int port) {
    const int fd = tcpSocket(SOCK_NONBLOCK);
    const int on = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    const sockaddr_in address = loopback(port);
    if (::bind(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) != 0 ||
        ::listen(fd, SOMAXCONN) != 0) {
        const int error = errno;
        ::close(fd);
        errno = error;
        fail(("cannot listen on 127.0.0.1:" + std::to_string(port)).c_str());
    }
    return fd;
}

int boundPort(int fd) {
    sockaddr_in address{};
    socklen_t size = sizeof(address);
    if (::getsockname(fd, reinterpret_cast<sockaddr*>(&address), &size) != 0) {
        fail("getsockname");
    }
    return ntohs(address.sin_port);
}

bool wouldBlock() {
    return errno == EAGAIN || errno == EWOULDBLOCK;
}

}  // namespace

IpcServer::IpcServer(int port, Handler handler, Complaint complaint)
    : m_handler(std::move(handler)), m_complaint(std::move(complaint)) {
    allowManyDescriptors();
    m_listener = listenOnLoopback(port);
    m_port = boundPort(m_listener);
    m_epoll = ::epoll_create1(EPOLL_CLOEXEC);
    if (m_epoll < 0) {
        fail("epoll_create1");
    }
    watch(m_listener, EPOLLIN);
}

bool IpcServer::isServed(int port) {
    const int fd = tcpSocket(0);
    const sockaddr_in own = loopback(0);
    const sockaddr_in address = loopback(port);
    // With a port of its own already, the socket cannot get the one asked about and meet itself.
    const bool served =
        ::bind(fd, reinterpret_cast<const sockaddr*>(&own), sizeof(own)) == 0 &&
        ::connect(fd, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) == 0;
    ::close(fd);
    return served;
}

IpcServer::~IpcServer() {
    for (const auto& [fd, connection] : m_connections) {
        ::close(fd);
    }
    ::close(m_listener);
    ::close(m_epoll);
}

void IpcServer::run(int stopFd) {
    watch(stopFd, EPOLLIN);
    std::array<epoll_event, 256> events{};
    for (;;) {
        const int count =
            ::epoll_wait(m_epoll, events.data(), static_cast<int>(events.size()), waitTime());
        if (count < 0 && errno != EINTR) {
            fail("epoll_wait");
        }
        for (int i = 0; i < count; ++i) {
            const int fd = events[static_cast<std::size_t>(i)].data.fd;
            if (fd == stopFd) {
                return;
            }
            fd == m_listener ? acceptAll() : onEvent(fd);
        }
        runTimers();
    }
}

void IpcServer::acceptAll() {
    for (;;) {
        if (m_connections.size() >= maxConnections) {
            makeRoom();
        }
        const int fd = ::accept4(m_listener, nullptr, nullptr, SOCK_NONBLOCK | SOCK_CLOEXEC);
        if (fd < 0 && errno == EMFILE && !m_connections.empty()) {
            makeRoom();
            continue;
        }
        if (fd < 0) {
            return;
        }
        auto& connection = *(m_connections[fd] = std::make_unique<Connection>());
        wakeAfter(fd, connection, idleLimit);
        watch(fd, EPOLLIN);
    }
}

void IpcServer::makeRoom() {
    // The one that has been silent for longest makes way, never one that is being answered.
    const auto silent = std::find_if(m_timers.begin(), m_timers.end(), [this](const auto& timer) {
        const auto phase = m_connections.at(timer.second)->phase;
        return phase == Connection::Phase::reading || phase == Connection::Phase::lingering;
    });
    const int victim = silent == m_timers.end() ? m_timers.begin()->second : silent->second;
    m_complaint("connection dropped: too many at once");
    close(victim);
}

void IpcServer::onEvent(int fd) {
    const auto found = m_connections.find(fd);
    if (found == m_connections.end()) {
        return;  // closed by an earlier event of the same round
    }
    Connection& connection = *found->second;
    switch (connection.phase) {
        case Connection::Phase::reading:
            return readRequest(fd, connection);
        case Connection::Phase::writing:
            return writeReply(fd, connection);
        case Connection::Phase::waiting:
        case Connection::Phase::lingering:
            return drain(fd);
    }
}

void IpcServer::readRequest(int fd, Connection& connection) {
    const auto room = connection.reader.room();
    const ssize_t got = ::recv(fd, room.data(), room.size(), 0);
    if (got < 0 && (wouldBlock() || errno == EINTR)) {
        return;
    }
    if (got <= 0) {
        if (connection.reader.received() > 0) {
            m_complaint("connection closed in the middle of a request");
        }
        return close(fd);
    }
    switch (connection.reader.added(static_cast<std::size_t>(got))) {
        case ipcFraming::FrameReader::State::wantsMore:
            return;
        case ipcFraming::FrameReader::State::badLength:
            m_complaint("connection refused: impossible frame length");
            return close(fd);
        case ipcFraming::FrameReader::State::complete:
            return answer(fd, connection);
    }
}

void IpcServer::answer(int fd, Connection& connection) {
    connection.plan = m_handler(connection.reader.body());
    if (connection.plan.chunk == 0) {
        connection.plan.chunk = std::max<std::size_t>(connection.plan.bytes.size(), 1);
    }
    if (connection.plan.delay.count() > 0) {
        connection.phase = Connection::Phase::waiting;
        return wakeAfter(fd, connection, connection.plan.delay);
    }
    writeReply(fd, connection);
}

void IpcServer::writeReply(int fd, Connection& connection) {
    const ReplyPlan& plan = connection.plan;
    const std::size_t pieceEnd =
        std::min((connection.sent / plan.chunk + 1) * plan.chunk, plan.bytes.size());
    while (connection.sent < pieceEnd) {
        const ssize_t sent = ::send(fd, plan.bytes.data() + connection.sent,
                                    pieceEnd - connection.sent, MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR) {
            continue;
        }
        if (sent < 0 && wouldBlock()) {
            connection.phase = Connection::Phase::writing;
            wakeAfter(fd, connection, idleLimit);
            return watch(fd, EPOLLOUT);
        }
        if (sent < 0) {
            return close(fd);
        }
        connection.sent += static_cast<std::size_t>(sent);
    }
    if (connection.sent == plan.bytes.size()) {
        return finish(fd, connection);
    }
    connection.phase = Connection::Phase::waiting;
    watch(fd, EPOLLIN);
    wakeAfter(fd, connection, plan.interval);
}

void IpcServer::finish(int fd, Connection& connection) {
    if (connection.plan.reset) {
        const linger abort{1, 0};
        ::setsockopt(fd, SOL_SOCKET, SO_LINGER, &abort, sizeof(abort));
    }
    if (connection.plan.reset || connection.plan.closeAfter) {
        return close(fd);
    }
    connection.phase = Connection::Phase::lingering;
    watch(fd, EPOLLIN);
    wakeAfter(fd, connection, idleLimit);
}

void IpcServer::drain(int fd) {
    // A connection carries one request; what else comes is thrown away until the peer closes.
    std::array<char, 4096> rest{};
    const ssize_t got = ::recv(fd, rest.data(), rest.size(), 0);
    if (got == 0 || (got < 0 && !wouldBlock() && errno != EINTR)) {
        close(fd);
    }
}

void IpcServer::onTimer(int fd) {
    Connection& connection = *m_connections.at(fd);
    switch (connection.phase) {
        case Connection::Phase::reading:
            m_complaint("connection dropped: no whole request in time");
            return close(fd);
        case Connection::Phase::waiting:
            return writeReply(fd, connection);
        case Connection::Phase::writing:
        case Connection::Phase::lingering:
            return close(fd);
    }
}

void IpcServer::runTimers() {
    // A timer that is set anew while this runs waits for the next round.
    const auto now = Clock::now();
    while (!m_timers.empty() && m_timers.begin()->first <= now) {
        onTimer(m_timers.begin()->second);
    }
}

int IpcServer::waitTime() const {
    if (m_timers.empty()) {
        return -1;
    }
    const auto left =
        std::chrono::ceil<std::chrono::milliseconds>(m_timers.begin()->first - Clock::now());
    return static_cast<int>(std::clamp<long long>(left.count(), 0, 60'000));
}

void IpcServer::wakeAfter(int fd, Connection& connection, Clock::duration wait) {
    m_timers.erase({connection.wakeAt, fd});
    connection.wakeAt = Clock::now() + wait;
    m_timers.insert({connection.wakeAt, fd});
}

void IpcServer::watch(int fd, unsigned events) {
    epoll_event event{};
    event.events = events;
    event.data.fd = fd;
    if (::epoll_ctl(m_epoll, EPOLL_CTL_MOD, fd, &event) != 0 &&
        (errno != ENOENT || ::epoll_ctl(m_epoll, EPOLL_CTL_ADD, fd, &event) != 0)) {
        fail("epoll_ctl");
    }
}

void IpcServer::close(int fd) {
    const auto found = m_connections.find(fd);
    m_timers.erase({found->second->wakeAt, fd});
    m_connections.erase(found);
    ::close(fd);
}

}  // namespace sim
