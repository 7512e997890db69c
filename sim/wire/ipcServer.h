#pragma once

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

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
///     IpcServer server(0, [](std::string_view body) { return planFor(body); }, complain);
///     std::printf("listening on 127.0.0.1:%d\n", server.port());
///     server.run(stopFd);
class IpcServer {
public:
    /// Called with the serialized message of each whole frame, on the thread of run().
    using Handler = std::function<ReplyPlan(std::string_view body)>;
    /// Called with one line about a connection that never became a request.
    using Complaint = std::function<void(const std::string& line)>;

    static constexpr std::size_t kMaxConnections = 4096;
    /// How long a peer may take to send its request, and to close after the reply.
    static constexpr std::chrono::seconds kIdleLimit{60};

    /// Binds 127.0.0.1; port 0 takes any free one. Throws std::system_error.
    IpcServer(int port, Handler handler, Complaint complaint);
    ~IpcServer();
    IpcServer(const IpcServer&) = delete;
    IpcServer& operator=(const IpcServer&) = delete;

    /// Whether somebody accepts connections on the port of 127.0.0.1.
    static bool isServed(int port);

    int port() const;
    /// Serves until the descriptor `stopFd` becomes readable, which stays the caller's.
    void run(int stopFd);
    /// Takes so much off the wait of every reply that waits now. Safe from any thread.
    void skip(ReplyPlan::Milliseconds time);

private:
    class Loop;
    std::unique_ptr<Loop> m_loop;
};

}  // namespace sim
