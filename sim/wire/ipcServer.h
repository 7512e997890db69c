#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <utility>

#include "apiMgmt/common/ipc/ipcFraming.h"

namespace sim {

/// What to send back on a connection, and how.
struct ReplyPlan {
    using Milliseconds = std::chrono::milliseconds;

    std::string bytes;
    Milliseconds delay{0};     // before the first byte
    std::size_t chunk = 0;     // bytes at a time; 0: all at once
    Milliseconds interval{0};  // between chunks
    bool closeAfter = false;   // end the connection after the bytes, else the client does
    bool reset = false;        // end it with a TCP reset
};

/// Listens on loopback and serves every connection from one thread, without ever waiting for
/// any of them: a slow or silent peer costs a descriptor and its bytes.
///
///     IpcServer server(0, [](std::string_view body) { return planFor(body); });
///     std::printf("listening on 127.0.0.1:%d\n", server.port());
///     server.run(stopFd);
class IpcServer {
public:
    /// Called with the serialized message of each whole frame, on the thread of run().
    using Handler = std::function<ReplyPlan(std::string_view body)>;
    /// Called with one line about a connection that never became a request.
    using Complaint = std::function<void(const std::string& line)>;

    static constexpr std::size_t maxConnections = 4096;
    /// How long a peer may take to send its request, and to close after the reply.
    static constexpr std::chrono::seconds idleLimit{60};

    /// Binds 127.0.0.1; port 0 takes any free one. Throws std::system_error.
    IpcServer(int port, Handler handler, Complaint complaint);
    ~IpcServer();
    IpcServer(const IpcServer&) = delete;
    IpcServer& operator=(const IpcServer&) = delete;

    /// Whether somebody accepts connections on the port of 127.0.0.1.
    static bool isServed(int port);

    int port() const { return m_port; }
    /// Serves until the descriptor `stopFd` becomes readable.
    void run(int stopFd);

private:
    using Clock = std::chrono::steady_clock;

    struct Connection {
        enum class Phase { reading, waiting, writing, lingering };
        Phase phase = Phase::reading;
        ipcFraming::FrameReader reader;
        ReplyPlan plan;
        std::size_t sent = 0;
        Clock::time_point wakeAt;
    };
    using Connections = std::map<int, std::unique_ptr<Connection>>;

    int m_epoll = -1;
    int m_listener = -1;
    int m_port = 0;
    Handler m_handler;
    Complaint m_complaint;
    Connections m_connections;
    std::set<std::pair<Clock::time_point, int>> m_timers;  // one for each connection

    void acceptAll();
    void makeRoom();
    void onEvent(int fd);
    void onTimer(int fd);
    void readRequest(int fd, Connection& connection);
    void answer(int fd, Connection& connection);
    void writeReply(int fd, Connection& connection);
    void finish(int fd, Connection& connection);
    void drain(int fd);
    void wakeAfter(int fd, Connection& connection, Clock::duration wait);
    void watch(int fd, unsigned events);
    void close(int fd);
    void runTimers();
    int waitTime() const;
};

}  // namespace sim
