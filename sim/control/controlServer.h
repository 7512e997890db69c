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

/// Where the page and the interface are served over TCP, and who may ask there.
struct WebPlace {
    std::string address = "127.0.0.1";  // or a name, or an IPv6 address
    int port = 0;                       // 0: any free one
    std::string token;                  // what every request has to bring; empty: nothing
};

/// Whether only programs of this machine reach the address.
bool isLoopback(const std::string& address);

/// Serves the simulator's HTTP interface (openapi.json), on threads of its own until it is
/// destroyed: for the control command through a socket file, for the page and for scripts through
/// a port. The simulator outlives the server.
class ControlServer {
public:
    /// On the socket file, for its owner only. Throws std::runtime_error.
    static std::unique_ptr<ControlServer> onSocket(Simulator& simulator, const std::string& path);
    /// On a port, with the page. Without a token only a browser on this machine and the page
    /// itself are served. Throws std::runtime_error, also for a place that others reach and that
    /// has no token.
    static std::unique_ptr<ControlServer> onPort(Simulator& simulator, const WebPlace& place);

    ~ControlServer();
    ControlServer(const ControlServer&) = delete;
    ControlServer& operator=(const ControlServer&) = delete;

    /// The page's, with the token behind "#", which browsers do not send.
    std::string url() const;

private:
    explicit ControlServer(Simulator& simulator);

    Simulator& m_simulator;
    std::unique_ptr<httplib::Server> m_server;
    std::thread m_thread;
    std::string m_socketPath;
    WebPlace m_place;

    void addRoutes();
    void addPage();
    void guardPort();
    std::string problemOf(const httplib::Request& request, int& status) const;
    void start();
};

}  // namespace sim
