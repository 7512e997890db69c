#include "client/commandLine/lifecycleCommand.h"

#include <algorithm>
#include <cstdio>
#include <iomanip>
#include <iostream>
#include <random>
#include <sstream>
#include <stdexcept>

#include "client/lifecycle/loadRun.h"

namespace client {

namespace {

constexpr int kMaxClusters = 1000000;
constexpr int kMaxParallel = 256;
constexpr int kMaxServers = 100;
constexpr double kMilliseconds = 1000;
constexpr const char* kDetails =
    "Runs a cluster's whole life: join, add servers, attach volumes, make data available and\n"
    "unavailable, report a flush and a snapshot preparation, announce a new primary manager,\n"
    "detach, remove servers, leave. With more than one life it generates load and reports\n"
    "throughput and latency percentiles. Each life that runs at the same time has volumes of its\n"
    "own.";

// So that runs beside each other do not meet.
std::string randomText() {
    std::random_device source;
    std::ostringstream text;
    text << std::hex << std::setfill('0') << std::setw(8) << source();
    return text.str();
}

void showCall(const LifecycleCall& call) {
    const auto width = static_cast<int>(std::to_string(call.total).size());
    std::printf("%*zu/%zu  %-24s %-42s ", width, call.number, call.total, call.operation,
                call.subject.c_str());
    if (call.outcome.isDone()) {
        std::printf("done %8.1f ms\n", call.outcome.seconds * kMilliseconds);
    } else {
        std::printf("%s\n", failureText(call.outcome).c_str());
    }
    std::fflush(stdout);
}

// Tells about ten times how far a load run is.
void showProgress(int over, int clusters) {
    const int step = std::max(clusters / 10, 1);
    if (over % step == 0 || over == clusters) {
        std::cerr << over << " of " << clusters << " clusters\n";
    }
}

}  // namespace

LifecycleCommand::LifecycleCommand(CLI::App& app)
    : m_command(app.add_subcommand("lifecycle", "Run a cluster's whole life, or many as load")),
      m_hccId("sanctl-" + randomText()) {
    m_command->fallthrough()->footer(kDetails);
    m_command->add_option("--san-id", m_sanId, "Array that is meant")->capture_default_str();
    m_command->add_option("--hcc-id", m_hccId,
                          "Cluster, by default a random one; several get a number each");
    m_command->add_option("--clusters", m_clusters, "How many lives; otherwise as many as M")
        ->check(CLI::Range(1, kMaxClusters).description(""))
        ->type_name("N");
    m_command->add_option("--parallel", m_parallel, "How many at the same time")
        ->check(CLI::Range(1, kMaxParallel).description(""))
        ->type_name("M")
        ->capture_default_str();
    m_command->add_option("--servers", m_servers, "Servers of a cluster")
        ->check(CLI::Range(1, kMaxServers).description(""))
        ->type_name("N")
        ->capture_default_str();
    m_command
        ->add_option("--volumes", m_volumesEach,
                     "Volumes of a cluster; otherwise 2, or 1 with --parallel")
        ->check(CLI::Range(1, kMaxServers).description(""))
        ->type_name("N");
    m_command
        ->add_option("--volume", m_volumes,
                     "Volume to use, repeatable; otherwise vol-1, vol-2, ...")
        ->allow_extra_args(false)
        ->type_name("ID");
}

int LifecycleCommand::clusters() const {
    return m_clusters > 0 ? m_clusters : m_parallel;
}

int LifecycleCommand::volumesEach() const {
    if (m_volumesEach > 0) {
        return m_volumesEach;
    }
    if (!m_volumes.empty()) {
        return static_cast<int>(m_volumes.size()) / m_parallel;
    }
    return m_parallel == 1 ? 2 : 1;
}

// A worker's share of the volumes, so that no two lives at the same time have one in common.
std::vector<std::string> LifecycleCommand::volumesOf(int worker) const {
    const int each = volumesEach();
    std::vector<std::string> volumes;
    for (int i = worker * each; i < (worker + 1) * each; ++i) {
        volumes.push_back(m_volumes.empty() ? "vol-" + std::to_string(i + 1)
                                            : m_volumes[static_cast<std::size_t>(i)]);
    }
    return volumes;
}

void LifecycleCommand::checkVolumes() const {
    const auto needed = static_cast<std::size_t>(std::max(volumesEach(), 1) * m_parallel);
    if (!m_volumes.empty() && m_volumes.size() < needed) {
        throw std::invalid_argument("--volume: the lives at the same time need " +
                                    std::to_string(needed) + " volumes, one for each at least");
    }
}

ClusterPlan LifecycleCommand::plan(int cluster, int worker) const {
    const std::string number = clusters() == 1 ? "" : "-" + std::to_string(cluster + 1);
    ClusterPlan plan{m_sanId, m_hccId + number, randomText(), {}, volumesOf(worker)};
    for (int i = 1; i <= m_servers; ++i) {
        plan.servers.push_back(plan.hccId + "-node-" + std::to_string(i));
    }
    return plan;
}

ExitStatus LifecycleCommand::run(const CommandLine& line) const {
    checkVolumes();
    const bool isDemonstration = clusters() == 1 && line.form == Form::Human;
    return isDemonstration ? showOne(line) : runLoad(line);
}

ExitStatus LifecycleCommand::showOne(const CommandLine& line) const {
    Session session(line.service);
    const ClusterPlan cluster = plan(0, 0);
    std::cout << "Cluster " << cluster.hccId << " at " << line.service.url << std::endl;
    return runLifecycle(session, cluster, showCall);
}

ExitStatus LifecycleCommand::runLoad(const CommandLine& line) const {
    const int lives = clusters();
    LoadPlan load{lives, m_parallel,
                  [this](int cluster, int worker) { return plan(cluster, worker); },
                  [lives](int over) { showProgress(over, lives); }};
    const LoadResult result = client::runLoad(line.service, load);
    Json report = result.statistics.report(result.seconds);
    report["clusters"] = lives;
    report["parallel"] = m_parallel;
    report["failedClusters"] = result.failedClusters;
    report["exitStatus"] = static_cast<int>(result.status);
    if (line.form == Form::Machine) {
        printJson(report);
    } else {
        std::cout << CallStatistics::table(report) << lives - result.failedClusters << " of "
                  << lives << " clusters lived to the end\n";
    }
    return result.status;
}

}  // namespace client
