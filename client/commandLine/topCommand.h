#pragma once

#include "client/call/interruption.h"
#include "client/commandLine/commandLine.h"
#include "client/top/activity.h"

namespace client {

/// The subcommand "top": what the service counts, live.
class TopCommand {
public:
    /// Declares the subcommand. The object must live until it was run.
    explicit TopCommand(CLI::App& app);
    TopCommand(const TopCommand&) = delete;
    TopCommand& operator=(const TopCommand&) = delete;

    bool parsed() const { return m_command->parsed(); }

    /// Ends with `q`, SIGINT or SIGTERM, with --once after one interval. Raises
    /// std::runtime_error when no counts of a service are found at the first look.
    ExitStatus run(const CommandLine& line) const;

private:
    ServiceOptions statusOptions(const CommandLine& line) const;
    void show(const CommandLine& line, bool isScreen, const Json& activity) const;

    CLI::App* m_command;
    std::string m_statusUrl;
    double m_interval = 1;
    bool m_once = false;
};

}  // namespace client
