#include "sim/control/controlServer.h"

#include <httplib.h>
#include <sys/stat.h>
#include <unistd.h>

#include <set>
#include <stdexcept>

#include "sim/control/controlSocket.h"
#include "sim/page/webFiles.h"
#include "sim/simulator/simulator.h"

namespace sim {

namespace {

using httplib::Request;
using httplib::Response;

constexpr std::size_t threads = 16;
constexpr std::size_t longestBody = std::size_t{1024} * 1024;  // bytes; a scenario is far below
constexpr std::size_t mostExchanges = 1000;
constexpr const char* jsonType = "application/json";

void answer(Response& response, const Json& json) {
    response.set_content(jsonText(json), jsonType);
}

Json body(const Request& request) {
    return parseJson(request.body, "the request");
}

/// A number among the query's parameters; throws std::runtime_error when it is none.
std::uint64_t numberIn(const Request& request, const char* name, std::uint64_t otherwise) {
    if (!request.has_param(name)) {
        return otherwise;
    }
    const std::string text = request.get_param_value(name);
    if (text.empty() || text.size() > 18 ||
        text.find_first_not_of("0123456789") != std::string::npos) {
        throw std::runtime_error(std::string("\"") + name + "\" has to be a number");
    }
    return std::stoull(text);
}

/// Runs `work`; what it throws becomes a 400 that says what is wrong.
template <class Work>
httplib::Server::Handler guarded(Work work) {
    return [work](const Request& request, Response& response) {
        try {
            work(request, response);
        } catch (const std::exception& problem) {
            response.status = 400;
            answer(response, Json{{"error", problem.what()}});
        }
    };
}

/// A page of another site must not reach the simulator through the reader's browser: neither
/// under a name of its own that leads to loopback, nor by sending a form. Gives what is wrong
/// with the request, or nothing.
std::string foreignness(const Request& request, int port) {
    std::set<std::string> hosts;
    for (const char* name : {"127.0.0.1", "localhost"}) {
        hosts.insert(std::string(name) + ":" + std::to_string(port));
        if (port == 80) {
            hosts.insert(name);
        }
    }
    const std::string host = request.get_header_value("Host");
    const std::string origin = request.get_header_value("Origin");
    if (hosts.count(host) == 0 || (!origin.empty() && origin != "http://" + host)) {
        return "only the simulator's own page may ask";
    }
    const bool reads = request.method == "GET" || request.method == "HEAD";
    if (!reads && request.get_header_value("Content-Type") != jsonType) {
        return "a request that changes something needs Content-Type: application/json";
    }
    return "";
}

}  // namespace

ControlServer::ControlServer(Simulator& simulator)
    : m_simulator(simulator), m_server(std::make_unique<httplib::Server>()) {
    m_server->new_task_queue = [] { return new httplib::ThreadPool(threads); };
    m_server->set_payload_max_length(longestBody);
    m_server->set_keep_alive_timeout(2);
    m_server->set_read_timeout(5);
    addReads();
    addChanges();
}

std::unique_ptr<ControlServer> ControlServer::onSocket(Simulator& simulator,
                                                       const std::string& path) {
    prepareControlPath(path);
    std::unique_ptr<ControlServer> made(new ControlServer(simulator));
    made->m_server->set_address_family(AF_UNIX);
    const mode_t before = ::umask(S_IRWXG | S_IRWXO);
    const bool bound = made->m_server->bind_to_port(path, 1);
    ::umask(before);
    if (!bound) {
        throw std::runtime_error("control socket: cannot listen at " + path);
    }
    made->m_socketPath = path;
    made->start();
    return made;
}

std::unique_ptr<ControlServer> ControlServer::onPort(Simulator& simulator, int port) {
    std::unique_ptr<ControlServer> made(new ControlServer(simulator));
    made->addPage();
    if (port == 0) {
        made->m_port = made->m_server->bind_to_any_port("127.0.0.1");
    } else if (made->m_server->bind_to_port("127.0.0.1", port)) {
        made->m_port = port;
    }
    if (made->m_port <= 0) {
        throw std::runtime_error("page: cannot listen on 127.0.0.1:" + std::to_string(port));
    }
    made->start();
    return made;
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

void ControlServer::start() {
    m_thread = std::thread([this] { m_server->listen_after_bind(); });
}

void ControlServer::addReads() {
    m_server->Get("/api/state", guarded([this](const Request&, Response& response) {
                      answer(response, m_simulator.state());
                  }));
    m_server->Get("/api/faults", guarded([this](const Request&, Response& response) {
                      answer(response, m_simulator.faults());
                  }));
    m_server->Get("/api/exchanges", guarded([this](const Request& request, Response& response) {
                      answer(response,
                             m_simulator.exchanges(numberIn(request, "last", mostExchanges),
                                                   numberIn(request, "since", 0), true));
                  }));
}

void ControlServer::addChanges() {
    m_server->Post("/api/faults", guarded([this](const Request& request, Response& response) {
                       answer(response, m_simulator.addFault(body(request)));
                   }));
    m_server->Delete("/api/faults", guarded([this](const Request& request, Response& response) {
                         if (!m_simulator.removeFault(numberIn(request, "id", 0))) {
                             throw std::runtime_error("there is no fault of that id");
                         }
                         answer(response, Json::object());
                     }));
    m_server->Post("/api/scenario", guarded([this](const Request& request, Response& response) {
                       m_simulator.addScenario(body(request));
                       answer(response, Json::object());
                   }));
    m_server->Post("/api/reset", guarded([this](const Request& request, Response& response) {
                       const Json what = body(request);
                       onlyMembers(what, "a reset", {"what"});
                       m_simulator.reset(what.value("what", "all"));
                       answer(response, Json::object());
                   }));
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
         {"Cache-Control", "no-store"}});
    m_server->set_pre_routing_handler([this](const Request& request, Response& response) {
        const std::string problem = foreignness(request, m_port);
        if (problem.empty()) {
            return httplib::Server::HandlerResponse::Unhandled;
        }
        response.status = 403;
        answer(response, Json{{"error", problem}});
        return httplib::Server::HandlerResponse::Handled;
    });
}

}  // namespace sim
