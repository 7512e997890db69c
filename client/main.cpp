// The command-line client of the service.
#include <CLI/CLI.hpp>

#include "client/exitStatus.h"

int main(int argc, char** argv) {
    CLI::App app("Command-line client of the array's service for host-cache clusters.", "sanctl");
    try {
        app.parse(argc, argv);
        return static_cast<int>(client::ExitStatus::done);
    } catch (const CLI::ParseError& error) {
        const bool helpWanted = app.exit(error) == 0;
        return static_cast<int>(helpWanted ? client::ExitStatus::done
                                           : client::ExitStatus::wrongUsage);
    }
}
