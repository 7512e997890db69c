// The array simulator: stands in for an array's API manager.
#include <poll.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <chrono>
#include <climits>
#include <csignal>
#include <cstdio>
#include <system_error>

#include "apiMgmt/common/ipc/apiMgrPort.h"
#include "apiMgmt/common/text/safeText.h"
#include "sim/control/controlServer.h"
#include "sim/control/controlSocket.h"
#include "sim/control/secretFile.h"
#include "sim/simulator/simulator.h"
#include "sim/wire/ipcServer.h"

namespace {

constexpr int kWrongUsage = 64;  // exit status
/// A pipe with room takes PIPE_BUF bytes without waiting.
constexpr std::size_t kMaxLine = PIPE_BUF - 64;
/// How long a closed connection may keep its port, and a little more.
constexpr std::chrono::seconds kPortWait{65};

struct Arguments {
    int port = getApiMgrPort();
    std::string control;  // empty: where simctl looks for this port
    int web = -1;         // no page
    std::string listen = "127.0.0.1";
    std::string tokenFile;
    std::string seedFile;
    std::string credentialsFile;
    std::string scenarioFile;
    sim::SimulatorOptions options;
};

void declare(CLI::App& app, Arguments& arguments) {
    sim::SimulatorOptions& options = arguments.options;
    app.set_version_flag("--version", PROGRAM_VERSION);
    app.add_option("--port", arguments.port, "TCP port on 127.0.0.1, up to 65535; 0: any free")
        ->check(CLI::Range(0, 65535).description(""))
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--volumes", options.seed.volumes, "volumes to start with, up to 100000")
        ->check(CLI::Range(0, sim::Seed::kMaxVolumes).description(""))
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--seed-file", arguments.seedFile, "clusters, servers, volumes to start with")
        ->type_name("FILE");
    app.add_option("--state", options.stateFile, "keep the state in this file, else in memory")
        ->type_name("FILE")
        ->default_str("");
    app.add_option("--log", options.logFile, "append every exchange to this file, as JSON lines")
        ->type_name("FILE");
    app.add_option("--credentials", arguments.credentialsFile,
                   "accept the callers that this file names, instead of any")
        ->type_name("FILE");
    app.add_option("--scenario", arguments.scenarioFile, "faults to start with")->type_name("FILE");
    app.add_option("--control", arguments.control,
                   "socket file for simctl, else one that goes with the port")
        ->type_name("PATH");
    app.add_option("--web", arguments.web, "serve the page on this port, up to 65535; 0: any free")
        ->check(CLI::Range(0, 65535).description(""))
        ->type_name("N");
    app.add_option("--listen", arguments.listen, "serve the page there, for other machines")
        ->type_name("ADDRESS")
        ->capture_default_str();
    app.add_option("--token-file", arguments.tokenFile,
                   "what the page's readers have to bring (default: none, or one that is printed)")
        ->type_name("FILE");
    app.add_flag("--lenient", options.lenient,
                 "refuse nothing: make what a command names and is not there");
    app.add_flag("--show-keys", options.showKeys, "do not mask cluster keys in what is shown");
}

void readFiles(Arguments& arguments) {
    if (!arguments.seedFile.empty()) {
        arguments.options.seed.content = sim::readJsonFile(arguments.seedFile);
        arguments.options.seed.source = arguments.seedFile;
    }
    if (!arguments.credentialsFile.empty()) {
        arguments.options.access =
            sim::Access(sim::readJsonFile(arguments.credentialsFile), arguments.credentialsFile);
    }
    if (!arguments.scenarioFile.empty()) {
        arguments.options.scenario = sim::readJsonFile(arguments.scenarioFile);
        arguments.options.scenarioSource = arguments.scenarioFile;
    }
}

/// A descriptor that becomes readable when the process is asked to end. Blocks the signals, so
/// it comes before the first thread.
int endSignals() {
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    pthread_sigmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return ::signalfd(-1, &signals, SFD_CLOEXEC);
}

/// Prints a line unless that would have to wait: nobody who looks at the simulator, or stops
/// looking, holds it up. What was left out is said as soon as there is room again.
void printLine(const std::string& line) {
    static std::size_t leftOut = 0;
    std::string text = leftOut == 0 ? "" : "(" + std::to_string(leftOut) + " lines left out)\n";
    text += line.substr(0, kMaxLine) + "\n";
    pollfd out{STDOUT_FILENO, POLLOUT, 0};
    if (::poll(&out, 1, 0) != 1 || ::write(STDOUT_FILENO, text.data(), text.size()) < 0) {
        ++leftOut;
    } else {
        leftOut = 0;
    }
}

/// The server on the port; null when the process is asked to end first. The usual port is one of
/// those that the system gives to outgoing connections: one that has it keeps it for up to a
/// minute after its end. That is waited for; another server on the port is not.
std::unique_ptr<sim::IpcServer> serveIpc(sim::Simulator& simulator, int port, int stopFd) {
    const auto end = std::chrono::steady_clock::now() + kPortWait;
    for (bool told = false;; told = true) {
        try {
            return std::make_unique<sim::IpcServer>(
                port, [&](std::string_view message) { return simulator.handle(message); },
                printLine);
        } catch (const std::system_error& failure) {
            if (failure.code() != std::errc::address_in_use ||
                std::chrono::steady_clock::now() > end) {
                throw;
            }
            if (sim::IpcServer::isServed(port)) {
                throw std::runtime_error("port " + std::to_string(port) +
                                         " is taken: another simulator or an API manager listens "
                                         "there; choose another one with --port");
            }
        }
        if (!told) {
            printLine("waiting for port " + std::to_string(port) +
                      ": a connection has it, for a minute at most after its end");
        }
        pollfd stop{stopFd, POLLIN, 0};
        if (::poll(&stop, 1, 250) == 1) {
            return nullptr;
        }
    }
}

/// Without a path of its own a simulator goes on when its socket cannot be: in another network
/// the same port may be in use twice.
std::unique_ptr<sim::ControlServer> serveControl(sim::Simulator& simulator, int port,
                                                 const std::string& path) {
    try {
        return sim::ControlServer::onSocket(simulator,
                                            path.empty() ? sim::defaultControlPath(port) : path);
    } catch (const std::runtime_error& failure) {
        if (!path.empty()) {
            throw;
        }
        std::fprintf(stderr, "sanSim: not reachable by simctl: %s\n", failure.what());
        return nullptr;
    }
}

std::unique_ptr<sim::ControlServer> servePage(sim::Simulator& simulator,
                                              const Arguments& arguments) {
    if (arguments.web < 0) {
        return nullptr;
    }
    sim::WebPlace place{arguments.listen, arguments.web, ""};
    if (!arguments.tokenFile.empty()) {
        place.token = sim::readSecretFile(arguments.tokenFile);
    } else if (!sim::isLoopback(arguments.listen)) {
        place.token = sim::makeToken();
    }
    return sim::ControlServer::onPort(simulator, place);
}

int serve(const Arguments& arguments) {
    const int stopFd = endSignals();
    sim::Simulator simulator(arguments.options, printLine);
    const auto server = serveIpc(simulator, arguments.port, stopFd);
    if (server == nullptr) {
        return 0;
    }
    const auto control = serveControl(simulator, server->port(), arguments.control);
    const auto page = servePage(simulator, arguments);
    printLine("listening on 127.0.0.1:" + std::to_string(server->port()));
    if (page != nullptr) {
        printLine("page at " + page->url());
    }
    simulator.onAdvance([&](std::chrono::milliseconds step) { server->skip(step); });
    server->run(stopFd);
    simulator.onAdvance(nullptr);
    ::close(stopFd);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Array simulator: answers the management API as a storage array does.", "sanSim");
    Arguments arguments;
    declare(app, arguments);
    try {
        app.parse(argc, argv);
        readFiles(arguments);
        return serve(arguments);
    } catch (const CLI::ParseError& failure) {
        return app.exit(failure) == 0 ? 0 : kWrongUsage;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "sanSim: %s\n", text::oneLine(failure.what()).c_str());
        return 1;
    }
}
