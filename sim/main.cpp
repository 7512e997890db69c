// The array simulator: stands in for an array's API manager.
#include <netdb.h>
#include <netinet/in.h>
#include <sys/signalfd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>

#include "sim/ipcServer.h"
#include "sim/simulator.h"

namespace {

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

/// Where the array's API manager listens.
int apiManagerPort() {
    const servent* entry = ::getservbyname("ostrel-apimgr", "tcp");
    return entry != nullptr ? ntohs(static_cast<std::uint16_t>(entry->s_port)) : 35000;
}

void printLine(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

int serve(int port) {
    const int stopFd = endSignals();
    sim::Simulator simulator(printLine);
    sim::IpcServer server(
        port, [&](std::string_view message) { return simulator.handle(message); }, printLine);
    printLine("listening on 127.0.0.1:" + std::to_string(server.port()));
    server.run(stopFd);
    ::close(stopFd);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Array simulator: answers the management API as a storage array does.", "sanSim");
    int port = apiManagerPort();
    app.add_option("--port", port, "TCP port on 127.0.0.1; 0 takes any free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    CLI11_PARSE(app, argc, argv);
    try {
        return serve(port);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "sanSim: %s\n", error.what());
        return 1;
    }
}
