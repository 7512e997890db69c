#pragma once

#include <memory>
#include <string>
#include <thread>

namespace httplib {
class Server;
struct Request;
struct Response;
}  // namespace httplib

namespace sim {

class Simulator;

/// Serves the simulator to people over HTTP, on threads of its own until it is destroyed: the
/// control command through a socket file, the page through a port on loopback. Both speak the
/// same few requests, all of them JSON:
///
///     GET    /api/state                        clusters, servers, volumes
///     GET    /api/exchanges?last=N&since=ID    what was received and sent
///     GET    /api/faults                       kinds, commands, and the rules in force
///     POST   /api/faults                       a rule; answers it with its id
///     DELETE /api/faults?id=N
///     POST   /api/scenario                     {"faults": [rules]}
///     POST   /api/reset                        {"what": "faults", "log", "state" or "all"}
///
/// The simulator outlives the server.
class ControlServer {
public:
    /// On the socket file, for its owner only. Throws std::runtime_error.
    static std::unique_ptr<ControlServer> onSocket(Simulator& simulator, const std::string& path);
    /// On a port of 127.0.0.1, with the page; 0 takes any free one. Throws std::runtime_error.
    static std::unique_ptr<ControlServer> onPort(Simulator& simulator, int port);

    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    int port() const { return m_port; }

private:
    explicit ControlServer(Simulator& simulator);

    Simulator& m_simulator;
    std::unique_ptr<httplib::Server> m_server;
    std::thread m_thread;
    std::string m_socketPath;
    int m_port = 0;

    void addReads();
    void addChanges();
    void addPage();
    void start();
};

}  // namespace sim
