// The command-line client of the service.
#include <algorithm>
#include <csignal>
#include <iostream>
#include <list>
#include <span>

#include "apiMgmt/common/text/legalXmlText.h"
#include "client/commandLine/commandLine.h"
#include "client/commandLine/configFile.h"
#include "client/commandLine/lifecycleCommand.h"
#include "client/commandLine/operations.h"
#include "client/commandLine/topCommand.h"

namespace {

using client::ExitStatus;
using client::Form;

constexpr const char* kDescription =
    "Command-line client of the array's service for host-cache clusters.";
constexpr const char* kFooter =
    "Exit status: 0 done, 1 refused by the array, 2 refused by the service, 3 no answer,\n"
    "4 outcome unknown, 64 wrong usage, 130 interrupted. The options above may also follow\n"
    "the subcommand. Each subcommand has its own --help; \"man sanctl\" tells more.";

// An operation as a subcommand.
struct Subcommand {
    const client::Operation* operation;
    CLI::App* app;
    std::unique_ptr<client::Request> request;
};

std::list<Subcommand> declareOperations(CLI::App& app, client::MessageParts& parts,
                                        client::CommandLine& line) {
    std::list<Subcommand> commands;
    for (const client::Operation& operation : client::allOperations()) {
        CLI::App* command = app.add_subcommand(client::commandName(operation.name), operation.help);
        client::FieldOptions options(*command, parts, line.warnings);
        commands.push_back({&operation, command, operation.makeRequest()});
        commands.back().request->declareOptions(options);
        command->fallthrough();
    }
    return commands;
}

void declareMonitoring(CLI::App& app, client::CommandLine& line) {
    const auto wanted = [&line](std::int64_t /*count*/) { line.form = Form::Monitoring; };
    app.get_subcommand("ping")
        ->add_flag_function("--monitoring", wanted,
                            "Say and end as a check of a monitoring system does: 0 OK, 1 WARNING, "
                            "2 CRITICAL, 3 UNKNOWN")
        ->excludes(app.get_option("--json"));
}

ExitStatus runOperation(const Subcommand& command, const client::CommandLine& line) {
    client::Session session(line.service);
    const std::string name = command.operation->name;
    const client::Stop never;
    const client::Outcome outcome = client::withRetries(
        line.service.retry, name, never, [&] { return command.request->send(session); });
    const client::Json reply = command.request->reply();
    if (name == "Ping") {
        reportPing(line.form, outcome, reply);
    } else {
        reportOutcome(line.form, name, outcome, reply, line.warnings);
    }
    return outcome.status;
}

// How results are to be shown, looked up by hand: an error of the command line is shown in that
// form, too, and the parser stops before it knows.
Form wantedForm(std::span<char*> arguments) {
    const auto has = [&](std::string_view name) {
        return std::find(arguments.begin(), arguments.end(), name) != arguments.end();
    };
    return has("--monitoring") ? Form::Monitoring : has("--json") ? Form::Machine : Form::Human;
}

void checkArguments(std::span<char*> arguments) {
    for (std::size_t i = 1; i < arguments.size(); ++i) {
        const std::string argument = arguments[i];
        const std::string legal = text::legalXmlText(argument);
        if (legal != argument) {
            throw std::invalid_argument("argument " + std::to_string(i) + ", '" + legal +
                                        "': no UTF-8, or a character that XML forbids");
        }
    }
}

// Gives false when help or the version was asked for and shown.
bool parse(CLI::App& app, const client::ConfigFile& config, std::span<char*> arguments) {
    try {
        app.parse(static_cast<int>(arguments.size()), arguments.data());
        if (app.get_subcommands().empty()) {
            throw CLI::RequiredError("A subcommand");
        }
        config.checkTarget();
        return true;
    } catch (const CLI::Success& success) {
        app.exit(success);
        return false;
    } catch (const CLI::ParseError& failure) {
        throw std::invalid_argument(std::string(failure.what()) +
                                    "; run with --help for more information");
    }
}

ExitStatus run(std::span<char*> arguments, Form& form) {
    checkArguments(arguments);
    CLI::App app(kDescription, "sanctl");
    client::CommandLine line;
    client::MessageParts parts;
    declareSharedOptions(app, line);
    const auto config = std::make_shared<client::ConfigFile>(app);
    app.config_formatter(config);
    const std::list<Subcommand> commands = declareOperations(app, parts, line);
    declareMonitoring(app, line);
    const client::LifecycleCommand lifecycle(app);
    const client::TopCommand top(app);
    line.service.userAgent = PROGRAM_VERSION;
    std::replace(line.service.userAgent.begin(), line.service.userAgent.end(), ' ', '/');
    // One is required below: the parser would complain of no subcommand where it is misspelled.
    app.require_subcommand(0, 1)->footer(kFooter)->set_version_flag("--version", PROGRAM_VERSION);
    if (!parse(app, *config, arguments)) {
        return ExitStatus::Done;
    }
    form = line.form;
    checkSharedOptions(line);
    for (const Subcommand& command : commands) {
        if (command.app->parsed()) {
            return runOperation(command, line);
        }
    }
    return top.parsed() ? top.run(line) : lifecycle.run(line);
}

}  // namespace

int main(int argc, char** argv) {
    std::signal(SIGPIPE, SIG_IGN);
    const std::span<char*> arguments(argv, static_cast<std::size_t>(argc));
    Form form = wantedForm(arguments);
    ExitStatus status = ExitStatus::NoAnswer;
    try {
        status = run(arguments, form);
    } catch (const std::invalid_argument& failure) {
        status = ExitStatus::WrongUsage;
        reportError(form, status, failure.what());
    } catch (const std::exception& failure) {
        reportError(form, status, failure.what());
    }
    return exitCode(form, status);
}
