#pragma once

#include "client/commandLine/commandLine.h"
#include "client/lifecycle/loadRun.h"

namespace client {

/// The subcommand "lifecycle": one cluster's life shown step by step, or with several clusters or
/// a duration a load generator.
class LifecycleCommand {
public:
    /// Declares the subcommand. The object must live until it was run.
    explicit LifecycleCommand(CLI::App& app);
    LifecycleCommand(const LifecycleCommand&) = delete;
    LifecycleCommand& operator=(const LifecycleCommand&) = delete;

    /// Gives done when every call was, otherwise the gravest status. Raises
    /// std::invalid_argument when there are too few volumes.
    ExitStatus run(const CommandLine& line) const;

private:
    int clusters() const;
    int volumesEach() const;
    void checkVolumes() const;
    std::vector<std::string> volumesOf(int worker) const;
    ClusterPlan plan(int cluster, int worker) const;
    void declareLoad();
    void declareCluster();
    bool isDemonstration(const CommandLine& line) const;
    LoadPlan loadPlan(const CommandLine& line) const;
    void show(const CommandLine& line, const LoadResult& result) const;

    CLI::App* m_command;
    std::string m_sanId = "array-1";
    std::string m_hccId;
    int m_clusters = 0;  // not given
    double m_duration = 0;
    double m_rate = 0;
    std::size_t m_maxFailures = 100;
    bool m_cleanup = false;
    int m_parallel = 1;
    int m_servers = 2;
    int m_volumesEach = 0;
    std::vector<std::string> m_volumes;
};

}  // namespace client
