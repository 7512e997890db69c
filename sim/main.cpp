// The array simulator: stands in for an array's API manager.
#include <sys/signalfd.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <csignal>
#include <cstdio>

#include "apiMgmt/common/ipc/apiMgrPort.h"
#include "sim/ipcServer.h"
#include "sim/simulator.h"

namespace {

struct Arguments {
    int port = getApiMgrPort();
    std::string seedFile;
    std::string credentialsFile;
    std::string scenarioFile;
    sim::SimulatorOptions options;
};

void declare(CLI::App& app, Arguments& arguments) {
    sim::SimulatorOptions& options = arguments.options;
    app.add_option("--port", arguments.port, "TCP port on 127.0.0.1; 0 takes any free one")
        ->check(CLI::Range(0, 65535))
        ->capture_default_str();
    app.add_option("--volumes", options.seed.volumes, "volumes to start with: vol-1, vol-2, ...")
        ->check(CLI::Range(0, 100000))
        ->capture_default_str();
    app.add_option("--seed-file", arguments.seedFile, "clusters, servers, volumes to start with");
    app.add_option("--state", options.stateFile, "keep the state in this file")
        ->default_str("in memory");
    app.add_option("--log", options.logFile, "append every exchange to this file, as JSON lines");
    app.add_option("--credentials", arguments.credentialsFile,
                   "accept the callers that this file names, instead of any");
    app.add_option("--scenario", arguments.scenarioFile, "faults to start with");
    app.add_flag("--lenient", options.lenient,
                 "refuse nothing: make what a command names and the array does not know");
    app.add_flag("--show-keys", options.showKeys, "do not mask cluster keys in what is shown");
}

void readFiles(Arguments& arguments) {
    if (!arguments.seedFile.empty()) {
        arguments.options.seed.content = sim::readJsonFile(arguments.seedFile);
    }
    if (!arguments.credentialsFile.empty()) {
        arguments.options.access = sim::Access(sim::readJsonFile(arguments.credentialsFile));
    }
    if (!arguments.scenarioFile.empty()) {
        arguments.options.scenario = sim::readJsonFile(arguments.scenarioFile);
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

void printLine(const std::string& line) {
    std::printf("%s\n", line.c_str());
    std::fflush(stdout);
}

int serve(const Arguments& arguments) {
    const int stopFd = endSignals();
    sim::Simulator simulator(arguments.options, printLine);
    sim::IpcServer server(
        arguments.port, [&](std::string_view message) { return simulator.handle(message); },
        printLine);
    printLine("listening on 127.0.0.1:" + std::to_string(server.port()));
    server.run(stopFd);
    ::close(stopFd);
    return 0;
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Array simulator: answers the management API as a storage array does.", "sanSim");
    Arguments arguments;
    declare(app, arguments);
    CLI11_PARSE(app, argc, argv);
    try {
        readFiles(arguments);
        return serve(arguments);
    } catch (const std::exception& error) {
        std::fprintf(stderr, "sanSim: %s\n", error.what());
        return 1;
    }
}
