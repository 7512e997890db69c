// The command-line client of the service.
#include <csignal>
#include <iostream>
#include <list>

#include "client/commandLine/commandLine.h"
#include "client/commandLine/lifecycleCommand.h"
#include "client/commandLine/operations.h"

namespace {

using client::ExitStatus;

constexpr const char* kDescription =
    "Command-line client of the array's service for host-cache clusters.";
constexpr const char* kFooter =
    "Exit status: 0 done, 1 refused by the array, 2 refused by the service, 3 no answer,\n"
    "64 wrong usage. The options above may also follow the subcommand. Each subcommand\n"
    "has its own --help; \"man sanctl\" tells more.";

// An operation as a subcommand.
struct Subcommand {
    const client::Operation* operation;
    CLI::App* app;
    std::unique_ptr<client::Request> request;
};

std::list<Subcommand> declareOperations(CLI::App& app, client::MessageParts& parts) {
    std::list<Subcommand> commands;
    for (const client::Operation& operation : client::allOperations()) {
        CLI::App* command = app.add_subcommand(client::commandName(operation.name), operation.help);
        client::FieldOptions options(*command, parts);
        commands.push_back({&operation, command, operation.makeRequest()});
        commands.back().request->declareOptions(options);
        command->fallthrough();
    }
    return commands;
}

ExitStatus runOperation(const Subcommand& command, const client::CommandLine& line) {
    client::Session session(line.service);
    const client::Outcome outcome = command.request->send(session);
    const client::Json reply = command.request->reply();
    const std::string name = command.operation->name;
    if (name == "Ping") {
        reportPing(line.form, outcome, reply);
    } else {
        reportOutcome(line.form, name, outcome, reply);
    }
    return outcome.status;
}

ExitStatus run(int argc, char** argv) {
    CLI::App app(kDescription, "sanctl");
    client::CommandLine line;
    client::MessageParts parts;
    declareSharedOptions(app, line);
    const std::list<Subcommand> commands = declareOperations(app, parts);
    const client::LifecycleCommand lifecycle(app);
    // One is required below: the parser would complain of no subcommand where it is misspelled.
    app.require_subcommand(0, 1)->footer(kFooter)->set_version_flag("--version", PROGRAM_VERSION);
    try {
        app.parse(argc, argv);
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError("A subcommand");
        }
    } catch (const CLI::ParseError& failure) {
        return app.exit(failure) == 0 ? ExitStatus::Done : ExitStatus::WrongUsage;
    }
    checkSharedOptions(line);
    for (const Subcommand& command : commands) {
        if (command.app->parsed()) {
            return runOperation(command, line);
        }
    }
    return lifecycle.run(line);
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    try {
        return static_cast<int>(run(argc, argv));
    } catch (const std::invalid_argument& failure) {
        std::cerr << "sanctl: " << failure.what() << '\n';
        return static_cast<int>(ExitStatus::WrongUsage);
    } catch (const std::exception& failure) {
        std::cerr << "sanctl: " << failure.what() << '\n';
        return static_cast<int>(ExitStatus::NoAnswer);
    }
}
