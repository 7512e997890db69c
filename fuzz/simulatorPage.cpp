// Any bytes as what a browser or a script sends the simulator's port: it is answered in HTTP, and
// the simulator goes on.
#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>

#include "fuzz/fuzzTarget.h"
#include "sim/control/controlServer.h"
#include "sim/simulator/simulator.h"

namespace {

std::string exchange(std::uint16_t port, std::string_view bytes) {
    const int connection = ::socket(AF_INET, SOCK_STREAM, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    require(::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof(address)) ==
            0);
    // The server may leave before all of it is sent.
    (void)::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL);
    ::shutdown(connection, SHUT_WR);
    std::string answer;
    std::array<char, 4096> room{};
    for (ssize_t size = 0; (size = ::recv(connection, room.data(), room.size(), 0)) > 0;) {
        answer.append(room.data(), static_cast<std::size_t>(size));
    }
    ::close(connection);
    return answer;
}

}  // namespace

void drive(std::string_view bytes) {
    static sim::Simulator simulator({}, [](const std::string&) {});
    static const auto server = sim::ControlServer::onPort(simulator, {.token = "t"});
    static const std::string url = server->url();
    static const auto port = static_cast<std::uint16_t>(std::stoi(url.substr(url.rfind(':') + 1)));
    const std::string answer = exchange(port, bytes);
    require(answer.empty() || answer.starts_with("HTTP/1.1 "));
    require(simulator.state().contains("volumes"));
    simulator.reset(sim::Json{{"what", "faults"}});
}
