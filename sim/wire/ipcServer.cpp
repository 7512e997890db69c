#include "sim/wire/ipcServer.h"

#include <sys/resource.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <asio.hpp>
#include <cerrno>
#include <memory>
#include <set>
#include <system_error>

#include "apiMgmt/common/ipc/ipcFraming.h"

namespace sim {

namespace {

using asio::ip::tcp;
using Clock = std::chrono::steady_clock;
using Milliseconds = ReplyPlan::Milliseconds;
using ErrorCode = asio::error_code;

void allowManyDescriptors() {
    rlimit limit{};
    if (::getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        limit.rlim_cur = std::min<rlim_t>(limit.rlim_max, 2 * IpcServer::kMaxConnections);
        ::setrlimit(RLIMIT_NOFILE, &limit);
    }
}

tcp::endpoint loopback(int port) {
    return {asio::ip::address_v4::loopback(), static_cast<asio::ip::port_type>(port)};
}

/// What becomes of one connection: its request is read, its reply waits, is written piece by
/// piece, and then the peer is given time to close. Lives as long as something is awaited for it.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    /// Who keeps the connections, and what they are kept for.
    struct Keeper {
        IpcServer::Handler answer;
        IpcServer::Complaint complain;
        std::set<std::shared_ptr<Connection>> connections;
    };

    Connection(tcp::socket socket, Keeper& keeper)
        : m_socket(std::move(socket)), m_timer(m_socket.get_executor()), m_keeper(keeper) {}

    void start() {
        wakeAfter(IpcServer::kIdleLimit);
        readRequest();
    }

    /// Whether the peer is the one that is waited for, and since when: the earlier it will be
    /// given up, the longer it has been silent.
    bool waitsForPeer() const { return m_phase == Phase::reading || m_phase == Phase::lingering; }
    Clock::time_point wakesAt() const { return m_timer.expiry(); }

    void skip(Milliseconds time) {
        if (m_phase == Phase::waiting) {
            wakeAt(m_timer.expiry() - time);
        }
    }

    void close() {
        ErrorCode ignored;
        m_socket.close(ignored);
        m_timer.cancel();
        m_keeper.connections.erase(shared_from_this());
    }

private:
    enum class Phase { reading, waiting, writing, lingering };

    tcp::socket m_socket;
    asio::steady_timer m_timer;  // one at a time: the next piece is due, or the peer is too slow
    Keeper& m_keeper;
    Phase m_phase = Phase::reading;
    ipcFraming::FrameReader m_reader;
    ReplyPlan m_plan;
    std::size_t m_sent = 0;
    std::array<char, 512> m_rest{};  // what comes after the request, and is thrown away
    bool m_drains = false;

    void wakeAfter(Clock::duration wait) { wakeAt(Clock::now() + wait); }

    void wakeAt(Clock::time_point time) {
        m_timer.expires_at(time);
        m_timer.async_wait([self = shared_from_this()](const ErrorCode& error) {
            // A timer that was set anew may have gone off already.
            if (!error && self->m_socket.is_open() && self->m_timer.expiry() <= Clock::now()) {
                self->onTimer();
            }
        });
    }

    void onTimer() {
        if (m_phase == Phase::waiting) {
            return writeReply();
        }
        if (m_phase == Phase::reading) {
            m_keeper.complain("connection dropped: no whole request in time");
        }
        close();
    }

    void readRequest() {
        const auto room = m_reader.room();
        m_socket.async_read_some(
            asio::buffer(room.data(), room.size()),
            [self = shared_from_this()](const ErrorCode& error, std::size_t count) {
                if (self->m_socket.is_open()) {
                    error ? self->onBrokenRequest() : self->onBytes(count);
                }
            });
    }

    void onBrokenRequest() {
        if (m_reader.received() > 0) {
            m_keeper.complain("connection closed in the middle of a request");
        }
        close();
    }

    void onBytes(std::size_t count) {
        switch (m_reader.added(count)) {
            case ipcFraming::FrameReader::State::wantsMore:
                return readRequest();
            case ipcFraming::FrameReader::State::badLength:
                m_keeper.complain("connection refused: impossible frame length");
                return close();
            case ipcFraming::FrameReader::State::complete:
                return prepareReply();
        }
    }

    void prepareReply() {
        m_plan = m_keeper.answer(m_reader.body());
        if (m_plan.chunk == 0) {
            m_plan.chunk = std::max<std::size_t>(m_plan.bytes.size(), 1);
        }
        m_plan.delay.count() > 0 ? wait(m_plan.delay) : writeReply();
    }

    void wait(Milliseconds time) {
        m_phase = Phase::waiting;
        wakeAfter(time);
        drain();
    }

    void writeReply() {
        const std::size_t pieceEnd =
            std::min((m_sent / m_plan.chunk + 1) * m_plan.chunk, m_plan.bytes.size());
        if (m_sent == pieceEnd) {
            return finish();
        }
        m_phase = Phase::writing;
        wakeAfter(IpcServer::kIdleLimit);
        m_socket.async_write_some(
            asio::buffer(m_plan.bytes.data() + m_sent, pieceEnd - m_sent),
            [self = shared_from_this(), pieceEnd](const ErrorCode& error, std::size_t count) {
                if (self->m_socket.is_open()) {
                    self->m_sent += count;
                    error ? self->close() : self->onWritten(pieceEnd);
                }
            });
    }

    void onWritten(std::size_t pieceEnd) {
        const bool pause = m_sent == pieceEnd && m_sent < m_plan.bytes.size();
        pause ? wait(m_plan.interval) : writeReply();
    }

    void finish() {
        if (m_plan.reset) {
            ErrorCode ignored;
            m_socket.set_option(asio::socket_base::linger(true, 0), ignored);
        }
        if (m_plan.reset || m_plan.closeAfter) {
            return close();
        }
        m_phase = Phase::lingering;
        wakeAfter(IpcServer::kIdleLimit);
        drain();
    }

    /// A connection carries one request; what else comes is thrown away until the peer closes.
    void drain() {
        if (std::exchange(m_drains, true)) {
            return;
        }
        m_socket.async_read_some(
            asio::buffer(m_rest),
            [self = shared_from_this()](const ErrorCode& error, std::size_t /*count*/) {
                self->m_drains = false;
                if (!self->m_socket.is_open() || self->m_phase == Phase::writing) {
                    return;  // while a piece is on its way, writing finds out about the peer
                }
                error ? self->close() : self->drain();
            });
    }
};

}  // namespace

class IpcServer::Loop {
public:
    Loop(int port, Handler handler, Complaint complaint)
        : m_keeper{std::move(handler), std::move(complaint), {}}, m_acceptor(m_context) {
        try {
            m_acceptor.open(tcp::v4());
            m_acceptor.set_option(tcp::acceptor::reuse_address(true));
            m_acceptor.bind(loopback(port));
            m_acceptor.listen();
        } catch (const asio::system_error& failure) {
            throw std::system_error(failure.code().value(), std::generic_category(),
                                    "cannot listen on 127.0.0.1:" + std::to_string(port));
        }
    }

    // Every connection holds itself by what it waits for, and that goes with the context.
    ~Loop() { m_keeper.connections.clear(); }
    Loop(const Loop&) = delete;
    Loop& operator=(const Loop&) = delete;

    int port() const { return m_acceptor.local_endpoint().port(); }

    void run(int stopFd) {
        asio::posix::stream_descriptor stop(m_context, ::dup(stopFd));
        stop.async_wait(asio::posix::stream_descriptor::wait_read,
                        [this](const ErrorCode&) { m_context.stop(); });
        accept();
        m_context.run();
    }

    void skip(Milliseconds time) {
        asio::post(m_context, [this, time] {
            for (const auto& connection : m_keeper.connections) {
                connection->skip(time);
            }
        });
    }

private:
    Connection::Keeper m_keeper;
    asio::io_context m_context{1};
    tcp::acceptor m_acceptor;

    void accept() {
        m_acceptor.async_accept([this](const ErrorCode& error, tcp::socket socket) {
            if (!error) {
                const auto connection = std::make_shared<Connection>(std::move(socket), m_keeper);
                m_keeper.connections.insert(connection);
                connection->start();
            }
            const bool noDescriptor = error.value() == EMFILE || error.value() == ENFILE;
            if (noDescriptor || m_keeper.connections.size() >= kMaxConnections) {
                makeRoom();
            }
            accept();
        });
    }

    void makeRoom() {
        // The one that has been silent for longest makes way, never one that is being answered
        // while there is another.
        const auto victim =
            std::min_element(m_keeper.connections.begin(), m_keeper.connections.end(),
                             [](const auto& left, const auto& right) {
                                 return std::pair(!left->waitsForPeer(), left->wakesAt()) <
                                        std::pair(!right->waitsForPeer(), right->wakesAt());
                             });
        if (victim != m_keeper.connections.end()) {
            m_keeper.complain("connection dropped: too many at once");
            std::shared_ptr(*victim)->close();
        }
    }
};

IpcServer::IpcServer(int port, Handler handler, Complaint complaint) {
    allowManyDescriptors();
    m_loop = std::make_unique<Loop>(port, std::move(handler), std::move(complaint));
}

IpcServer::~IpcServer() = default;

bool IpcServer::isServed(int port) {
    asio::io_context context;
    tcp::socket socket(context);
    ErrorCode error;
    socket.open(tcp::v4(), error);
    // With a port of its own already, the socket cannot get the one asked about and meet itself.
    if (!error) {
        socket.bind(loopback(0), error);
    }
    if (!error) {
        socket.connect(loopback(port), error);
    }
    return !error;
}

int IpcServer::port() const {
    return m_loop->port();
}

void IpcServer::run(int stopFd) {
    m_loop->run(stopFd);
}

void IpcServer::skip(ReplyPlan::Milliseconds time) {
    m_loop->skip(time);
}

}  // namespace sim
