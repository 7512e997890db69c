#include "sim/control/controlServer.h"

#include <httplib.h>
#include <openssl/crypto.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <stdexcept>

#include "sim/control/apiRoutes.h"
#include "sim/control/controlSocket.h"
#include "sim/page/webFiles.h"

namespace sim {

namespace {

using httplib::Request;
using httplib::Response;

constexpr std::size_t kThreads = 16;
constexpr std::size_t kMaxBody = std::size_t{1024} * 1024;  // bytes; a scenario is far below
constexpr const char* kJsonType = "application/json";
constexpr int kBadRequest = 400;
constexpr int kUnauthorized = 401;
constexpr int kForbidden = 403;
constexpr int kNotFound = 404;

void answer(Response& response, const Json& json) {
    response.set_content(jsonText(json), kJsonType);
}

void refuse(Response& response, int status, const std::string& error) {
    response.status = status;
    answer(response, Json{{"error", error}});
}

/// Does what the route says; what it throws becomes an answer that says what is wrong.
httplib::Server::Handler handlerOf(Simulator& simulator, const ApiRoute& route) {
    return [&simulator, &route](const Request& request, Response& response) {
        try {
            answer(response, route.answer(simulator, request));
        } catch (const NotFound& failure) {
            refuse(response, kNotFound, failure.what());
        } catch (const std::exception& failure) {
            refuse(response, kBadRequest, failure.what());
        }
    };
}

std::string patternOf(const ApiRoute& route) {
    constexpr std::string_view kId = "{id}";
    std::string pattern = std::string(kApiRoot) + route.path;
    if (const auto at = pattern.find(kId); at != std::string::npos) {
        pattern.replace(at, kId.size(), "([0-9]+)");
    }
    return pattern;
}

/// As it stands in a URL: an IPv6 address in brackets.
std::string hostOf(const std::string& address) {
    return address.find(':') == std::string::npos ? address : "[" + address + "]";
}

bool isToken(const std::string& authorization, const std::string& token) {
    const std::string wanted = "Bearer " + token;
    return authorization.size() == wanted.size() &&
           CRYPTO_memcmp(authorization.data(), wanted.data(), wanted.size()) == 0;
}

/// A page of another site must not reach the simulator through the reader's browser, under a name
/// of its own that leads to this machine. Behind a token it cannot.
bool isOwnHost(const std::string& host, const WebPlace& place) {
    std::set<std::string> hosts;
    for (const std::string& name :
         {std::string("127.0.0.1"), std::string("localhost"), hostOf(place.address)}) {
        hosts.insert(name + ":" + std::to_string(place.port));
        if (place.port == 80) {
            hosts.insert(name);
        }
    }
    return hosts.contains(host);
}

}  // namespace

bool isLoopback(const std::string& address) {
    return address == "localhost" || address == "::1" || address.starts_with("127.");
}

ControlServer::ControlServer(Simulator& simulator)
    : m_simulator(simulator), m_server(std::make_unique<httplib::Server>()) {
    m_server->new_task_queue = [] { return new httplib::ThreadPool(kThreads); };
    m_server->set_payload_max_length(kMaxBody);
    m_server->set_keep_alive_timeout(2);
    m_server->set_read_timeout(5);
    // The library's own choice would let a second simulator share the port unnoticed.
    m_server->set_socket_options([](socket_t socket) {
        const int on = 1;
        ::setsockopt(socket, SOL_SOCKET, SO_REUSEADDR, &on, sizeof(on));
    });
    addRoutes();
}

std::unique_ptr<ControlServer> ControlServer::onSocket(Simulator& simulator,
                                                       const std::string& path) {
    prepareControlPath(path);
    std::unique_ptr<ControlServer> server(new ControlServer(simulator));
    server->m_server->set_address_family(AF_UNIX);
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    const bool bound = server->m_server->bind_to_port(path, 1);
    ::umask(before);
    if (!bound) {
        throw std::runtime_error("control socket: cannot listen at " + path);
    }
    server->m_socketPath = path;
    server->start();
    return server;
}

std::unique_ptr<ControlServer> ControlServer::onPort(Simulator& simulator, const WebPlace& place) {
    if (place.token.empty() && !isLoopback(place.address)) {
        throw std::runtime_error("page: " + place.address +
                                 " is reached by others, and so needs "
                                 "a token");
    }
    std::unique_ptr<ControlServer> server(new ControlServer(simulator));
    server->m_place = place;
    if (place.port == 0) {
        server->m_place.port = server->m_server->bind_to_any_port(place.address);
    } else if (!server->m_server->bind_to_port(place.address, place.port)) {
        server->m_place.port = -1;
    }
    if (server->m_place.port <= 0) {
        throw std::runtime_error("page: cannot listen on " + hostOf(place.address) + ":" +
                                 std::to_string(place.port) +
                                 ": is another program there? Choose another port with --web");
    }
    server->addPage();
    server->guardPort();
    server->start();
    return server;
}

ControlServer::~ControlServer() {
    if (m_thread.joinable()) {
        // Stopping has no effect before the thread listens.
        while (!m_server->is_running()) {
            std::this_thread::yield();
        }
        m_server->stop();
        m_thread.join();
    }
    if (!m_socketPath.empty()) {
        ::unlink(m_socketPath.c_str());
    }
}

std::string ControlServer::url() const {
    return "http://" + hostOf(m_place.address) + ":" + std::to_string(m_place.port) + "/" +
           (m_place.token.empty() ? "" : "#token=" + m_place.token);
}

void ControlServer::start() {
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
}

void ControlServer::addRoutes() {
    for (const ApiRoute& route : apiRoutes()) {
        const std::string_view method = route.method;
        const std::string pattern = patternOf(route);
        auto handler = handlerOf(m_simulator, route);
        if (method == "GET") {
            m_server->Get(pattern, std::move(handler));
        } else if (method == "POST") {
            m_server->Post(pattern, std::move(handler));
        } else if (method == "PUT") {
            m_server->Put(pattern, std::move(handler));
        } else {
            m_server->Delete(pattern, std::move(handler));
        }
    }
    m_server->set_error_handler([](const Request& request, Response& response) {
        if (response.body.empty()) {
            answer(response,
                   Json{{"error", response.status == kNotFound ? "there is no " + request.path
                                                               : "the request is not served"}});
        }
    });
}

void ControlServer::addPage() {
    for (const WebFile& file : webFiles()) {
        m_server->Get(std::string(file.path), [&file](const Request&, Response& response) {
            response.set_content(file.content.data(), file.content.size(), std::string(file.type));
        });
    }
    m_server->set_default_headers(
        {{"Content-Security-Policy",
          "default-src 'self'; img-src 'self' data:; frame-ancestors 'none'"},
         {"X-Content-Type-Options", "nosniff"},
         {"Referrer-Policy", "no-referrer"},
         {"Cache-Control", "no-store"}});
}

/// What is wrong with the request, or nothing.
std::string ControlServer::problemOf(const Request& request, int& status) const {
    status = kForbidden;
    const std::string host = request.get_header_value("Host");
    const std::string origin = request.get_header_value("Origin");
    if ((m_place.token.empty() && !isOwnHost(host, m_place)) ||
        (!origin.empty() && origin != "http://" + host)) {
        return "only the simulator's own page may ask";
    }
    const bool reads = request.method == "GET" || request.method == "HEAD";
    if (!reads && request.get_header_value("Content-Type") != kJsonType) {
        return "a request that changes something needs Content-Type: application/json";
    }
    // The page's own files hold nothing worth a token, and have to come before it is known.
    if (!m_place.token.empty() && request.path.starts_with("/api") &&
        !isToken(request.get_header_value("Authorization"), m_place.token)) {
        status = kUnauthorized;
        return "this simulator wants its token: Authorization: Bearer TOKEN";
    }
    return "";
}

void ControlServer::guardPort() {
    m_server->set_pre_routing_handler([this](const Request& request, Response& response) {
        int status = 0;
        const std::string problem = problemOf(request, status);
        if (problem.empty()) {
            return httplib::Server::HandlerResponse::Unhandled;
        }
        refuse(response, status, problem);
        return httplib::Server::HandlerResponse::Handled;
    });
}

}  // namespace sim
