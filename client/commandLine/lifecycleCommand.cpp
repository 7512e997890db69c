#include "client/commandLine/lifecycleCommand.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <iomanip>
#include <iostream>
#include <random>
#include <sstream>
#include <stdexcept>

#include "client/commandLine/operations.h"

namespace client {

namespace {

constexpr int kMaxClusters = 1000000;
constexpr int kMaxParallel = 256;
constexpr int kMaxServers = 100;
constexpr double kMaxDuration = 30.0 * 24 * 60 * 60;
constexpr double kMaxRate = 100000;
constexpr std::size_t kMaxFailures = 1000000000;
constexpr std::size_t kMaxShownLeftovers = 50;
constexpr double kMilliseconds = 1000;
constexpr const char* kDetails =
    "Runs a cluster's whole life: join, add servers, attach volumes, make data available and\n"
    "unavailable, report a flush and a snapshot preparation, announce a new primary manager,\n"
    "detach, remove servers, leave. With more than one life it generates load and reports\n"
    "throughput and latency percentiles. Each life that runs at the same time has volumes of its\n"
    "own. Ctrl-C ends it after the calls under way, twice at once; what is left on the array\n"
    "then, or after a call without an answer, is named.";

// So that runs at the same time use different names.
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

// How much of the run is over, as far as it is known beforehand.
double shareOf(const LoadPlan& plan, const LoadProgress& progress) {
    const double lives = plan.clusters > 0 ? static_cast<double>(progress.over) / plan.clusters : 0;
    const double time = plan.seconds > 0 ? progress.seconds / plan.seconds : 0;
    return std::min(std::max(lives, time), 1.0);
}

void showProgress(const LoadPlan& plan, const LoadProgress& progress) {
    constexpr int kBarWidth = 30;
    const double share = shareOf(plan, progress);
    const auto full = static_cast<std::size_t>(share * kBarWidth);
    const bool isTerminal = isatty(STDERR_FILENO) != 0;
    std::ostringstream line;
    line << std::fixed << std::setprecision(0);
    if (isTerminal) {
        line << "\r[" << std::string(full, '#') << std::string(kBarWidth - full, '.') << "] ";
    }
    line << progress.seconds << " s  " << share * 100 << " %  " << progress.over << " clusters  "
         << progress.calls << " calls  " << std::setprecision(1)
         << static_cast<double>(progress.calls) / std::max(progress.seconds, 1e-6) << " calls/s  "
         << progress.failedCalls << " failed" << (isTerminal ? "\x1b[K" : "\n");
    std::cerr << line.str() << std::flush;
}

Json leftoversJson(const std::vector<Leftover>& leftovers) {
    Json list = Json::array();
    for (const Leftover& leftover : leftovers) {
        list.push_back({{"cluster", leftover.cluster},
                        {"server", leftover.server},
                        {"volume", leftover.volume},
                        {"certain", leftover.isCertain},
                        {"removedBy", leftover.removedBy}});
    }
    return list;
}

void showLeftovers(const LoadResult& result) {
    for (const std::string& cluster : result.abandoned) {
        std::cerr << "sanctl: cluster " << cluster
                  << ": a call was under way; what it leaves behind is not known\n";
    }
    const std::size_t count = result.leftovers.size();
    for (std::size_t i = 0; i < std::min(count, kMaxShownLeftovers); ++i) {
        const Leftover& leftover = result.leftovers[i];
        std::cerr << "sanctl: left behind on the array: " << textOf(leftover) << " ("
                  << commandName(leftover.removedBy) << " removes it)\n";
    }
    if (count > kMaxShownLeftovers) {
        std::cerr << "sanctl: left behind on the array: " << count - kMaxShownLeftovers
                  << " more; --json names them all\n";
    }
}

const char* textOf(LoadEnd end) {
    switch (end) {
        case LoadEnd::TooManyFailures:
            return "too many failures";
        case LoadEnd::Interrupted:
            return "interrupted";
        default:
            return "finished";
    }
}

}  // namespace

LifecycleCommand::LifecycleCommand(CLI::App& app)
    : m_command(app.add_subcommand("lifecycle", "Run a cluster's whole life, or many as load")),
      m_hccId("sanctl-" + randomText()) {
    m_command->fallthrough()->footer(kDetails);
    declareLoad();
    declareCluster();
}

void LifecycleCommand::declareLoad() {
    m_command
        ->add_option("--clusters", m_clusters,
                     "How many lives; otherwise as many as M, or as there is time for")
        ->check(CLI::Range(1, kMaxClusters).description(""))
        ->type_name("N");
    m_command->add_option("--parallel", m_parallel, "How many at the same time")
        ->check(CLI::Range(1, kMaxParallel).description(""))
        ->type_name("M")
        ->capture_default_str();
    m_command->add_option("--duration", m_duration, "Begin lives for so long")
        ->check(CLI::Range(0.1, kMaxDuration).description(""))
        ->type_name("SECONDS");
    m_command->add_option("--rate", m_rate, "Calls in a second, at most")
        ->check(CLI::Range(0.01, kMaxRate).description(""))
        ->type_name("CALLS");
    m_command
        ->add_option("--max-failures", m_maxFailures,
                     "Begin no life after so many failed calls; 0 for no limit")
        ->check(CLI::Range(std::size_t{0}, kMaxFailures).description(""))
        ->type_name("N")
        ->capture_default_str();
    m_command->add_flag("--cleanup", m_cleanup,
                        "Also after Ctrl-C and calls without an answer, remove what is there");
}

void LifecycleCommand::declareCluster() {
    m_command->add_option("--san-id", m_sanId, "Array that is meant")->capture_default_str();
    m_command->add_option("--hcc-id", m_hccId,
                          "Cluster, by default a random one; several get a number each");
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

// 0 for as many as there is time for.
int LifecycleCommand::clusters() const {
    return m_clusters > 0 || m_duration > 0 ? m_clusters : m_parallel;
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

bool LifecycleCommand::isDemonstration(const CommandLine& line) const {
    return clusters() == 1 && line.form == Form::Human;
}

LoadPlan LifecycleCommand::loadPlan(const CommandLine& line) const {
    LoadPlan load;
    load.clusters = clusters();
    load.parallel = m_parallel;
    load.seconds = m_duration;
    load.callsPerSecond = m_rate;
    load.maxFailures = m_maxFailures;
    load.cleanup = m_cleanup;
    load.plan = [this](int cluster, int worker) { return plan(cluster, worker); };
    const bool isShown = isDemonstration(line);
    load.onCall = [isShown](const LifecycleCall& call) {
        if (isShown) {
            showCall(call);
        }
    };
    load.onSecond = [isShown, limits = load](const LoadProgress& progress) {
        if (!isShown) {
            showProgress(limits, progress);
        }
    };
    load.onSignal = [] {
        std::cerr << "sanctl: ending after the calls under way; a second signal ends it at once\n";
    };
    return load;
}

ExitStatus LifecycleCommand::run(const CommandLine& line) const {
    checkVolumes();
    if (isDemonstration(line)) {
        std::cout << "Cluster " << m_hccId << " at " << line.service.url << std::endl;
    }
    const LoadResult result = runLoad(line.service, loadPlan(line));
    show(line, result);
    if (!result.abandoned.empty()) {
        std::cout.flush();
        std::_Exit(static_cast<int>(result.status));
    }
    return result.status;
}

void LifecycleCommand::show(const CommandLine& line, const LoadResult& result) const {
    const int lives = result.progress.over;
    Json report = result.statistics.report(result.progress.seconds);
    report["clusters"] = lives;
    report["parallel"] = m_parallel;
    report["failedClusters"] = result.failedClusters;
    report["end"] = textOf(result.end);
    report["exitStatus"] = static_cast<int>(result.status);
    report["leftBehind"] = leftoversJson(result.leftovers);
    report["abandonedClusters"] = result.abandoned;
    if (line.form == Form::Machine) {
        printJson(report);
        return;
    }
    if (!isDemonstration(line)) {
        std::cerr << (isatty(STDERR_FILENO) != 0 ? "\n" : "");
        std::cout << CallStatistics::table(report) << lives - result.failedClusters << " of "
                  << lives << " clusters lived to the end\n";
    }
    if (result.end != LoadEnd::Finished) {
        std::cerr << "sanctl: ended early: " << textOf(result.end) << '\n';
    }
    showLeftovers(result);
}

}  // namespace client
