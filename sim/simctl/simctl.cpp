// Looks at a running array simulator, makes it fail on demand, and judges what came.
#include <CLI/CLI.hpp>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <iostream>
#include <limits>
#include <stdexcept>
#include <string>
#include <thread>

#include "apiMgmt/common/ipc/apiMgrPort.h"
#include "apiMgmt/common/text/safeText.h"
#include "sim/control/controlSocket.h"
#include "sim/control/secretFile.h"
#include "sim/faults/faults.h"
#include "sim/protocol/command.h"
#include "sim/simctl/control.h"
#include "sim/simctl/stateText.h"
#include "sim/simctl/verdictText.h"
#include "sim/text/jsonText.h"

namespace {

using sim::Control;
using sim::Json;

constexpr int kWrongUsage = 64;  // exit status
constexpr std::chrono::milliseconds kPollTime{500};

struct Arguments {
    sim::ControlPlace place;
    std::string tokenFile;
    int port = getApiMgrPort();
    bool json = false;
    // log and record
    std::size_t last = 10;
    bool follow = false;
    std::map<std::string, std::string> filters;
    std::string recordFile;
    // fail
    bool listKinds = false;
    bool listCommands = false;
    bool listRules = false;
    std::uint64_t removeId = 0;
    std::string scenarioFile;
    Json rule = Json::object();
    // verify
    std::string expectationFile;
    std::vector<std::string> rules;
    std::string junitFile;
    std::uint64_t since = 0;
    double waitSeconds = 0;
    // reset, seed, clock
    std::string what = "all";
    std::string seedFile;
    int volumes = 0;
    std::int64_t advanceMs = -1;
};

void print(const std::string& text) {
    std::cout << text << std::flush;
}

void printJson(const Json& json) {
    print(sim::jsonText(json, 2) + "\n");
}

void writeFile(const std::string& name, const std::string& text) {
    std::ofstream out(name);
    if (!(out << text << std::flush)) {
        throw std::runtime_error("cannot write " + name);
    }
}

std::string queryOf(const Arguments& arguments, const std::string& rest) {
    std::string query = "?" + rest;
    for (const auto& [name, value] : arguments.filters) {
        if (!value.empty()) {
            query += "&" + name + "=" + sim::queryText(value);
        }
    }
    return query;
}

void printExchanges(const Json& exchanges, bool asJson) {
    for (const Json& exchange : exchanges) {
        print(asJson ? sim::jsonText(exchange) + "\n" : sim::exchangeText(exchange) + "\n");
    }
}

/// Sends what stands in the file; the simulator's complaints about it name the file.
template <class Send>
Json sendFile(const std::string& file, const Send& send) {
    const Json content = file.empty() ? Json::object() : sim::readJsonFile(file);
    try {
        return send(content);
    } catch (const sim::RefusedBySimulator& failure) {
        throw std::runtime_error((file.empty() ? "" : file + ": ") + failure.what());
    }
}

/// The id of the last exchange that there is, or 0.
std::uint64_t lastId(Control& control) {
    const Json last = control.get("/exchanges?last=1&documents=none");
    return last.empty() ? 0 : last.back()["id"].get<std::uint64_t>();
}

void showLog(Control& control, const Arguments& arguments) {
    std::uint64_t seen = arguments.follow ? lastId(control) : 0;
    const auto show = [&](const std::string& which) {
        const Json exchanges =
            control.get("/exchanges" + queryOf(arguments, "documents=indented&" + which));
        printExchanges(exchanges, arguments.json);
        seen = exchanges.empty() ? seen : exchanges.back()["id"].get<std::uint64_t>();
    };
    show("last=" + std::to_string(arguments.last));
    while (arguments.follow) {
        std::this_thread::sleep_for(kPollTime);
        show("since=" + std::to_string(seen));
    }
}

void showState(Control& control, const Arguments& arguments) {
    const Json state = control.get("/state");
    arguments.json ? printJson(state) : print(sim::stateText(state));
}

void fail(Control& control, const Arguments& arguments) {
    if (arguments.listKinds) {
        // Known without a simulator, so that the completion and a reader need none.
        const Json kinds = sim::faultKinds();
        arguments.json ? printJson(kinds) : print(sim::faultKindsText(kinds));
    } else if (arguments.listCommands) {
        for (const std::string& name : sim::commandNames()) {
            print(name + "\n");
        }
    } else if (arguments.listRules) {
        const Json rules = control.get("/faults");
        arguments.json ? printJson(rules) : print(sim::faultRulesText(rules));
    } else if (arguments.removeId != 0) {
        control.remove("/faults/" + std::to_string(arguments.removeId));
    } else if (!arguments.scenarioFile.empty()) {
        sendFile(arguments.scenarioFile,
                 [&](const Json& scenario) { return control.post("/scenarios", scenario); });
    } else if (!arguments.rule.contains("fault")) {
        throw CLI::RequiredError("COMMAND and FAULT, or one of the options above,");
    } else {
        const Json rule = control.post("/faults", arguments.rule);
        arguments.json ? printJson(rule) : print(sim::faultRulesText(Json::array({rule})));
    }
}

/// What is to be verified: the file's content, and the rules that are named besides.
Json expectations(Json out, const Arguments& arguments) {
    if (!arguments.rules.empty()) {
        out["rules"] = arguments.rules;
    }
    if (arguments.since != 0) {
        out["since"] = arguments.since;
    }
    return out;
}

int verify(Control& control, const Arguments& arguments) {
    if (arguments.expectationFile.empty() && arguments.rules.empty()) {
        throw CLI::RequiredError("FILE, or --rules,");
    }
    const auto end =
        std::chrono::steady_clock::now() + std::chrono::duration<double>(arguments.waitSeconds);
    const Json verdict = sendFile(arguments.expectationFile, [&](const Json& content) {
        const Json expected = expectations(content, arguments);
        Json latest = control.post("/verify", expected);
        while (!latest["passed"].get<bool>() && std::chrono::steady_clock::now() < end) {
            std::this_thread::sleep_for(kPollTime);
            latest = control.post("/verify", expected);
        }
        return latest;
    });
    arguments.json ? printJson(verdict) : print(sim::verdictText(verdict));
    if (!arguments.junitFile.empty()) {
        const std::string& file = arguments.expectationFile;
        writeFile(arguments.junitFile, sim::verdictJunit(verdict, file.empty() ? "rules" : file));
    }
    return verdict["passed"].get<bool>() ? 0 : 1;
}

void record(Control& control, const Arguments& arguments) {
    const std::string recording =
        sim::jsonText(control.get("/recording" +
                                  queryOf(arguments, "since=" + std::to_string(arguments.since))),
                      2) +
        "\n";
    arguments.recordFile.empty() ? print(recording) : writeFile(arguments.recordFile, recording);
}

void showRules(Control& control, const Arguments& arguments) {
    const Json rules = control.get("/rules");
    if (arguments.json) {
        return printJson(rules);
    }
    for (const Json& rule : rules) {
        print(rule.value("name", "") + ": " + rule.value("text", "") + "\n");
    }
}

void seed(Control& control, const Arguments& arguments) {
    if (arguments.seedFile.empty()) {
        return printJson(control.get("/seed"));
    }
    sendFile(arguments.seedFile, [&](const Json& content) {
        return control.put("/seed", Json{{"volumes", arguments.volumes}, {"content", content}});
    });
}

void clock(Control& control, const Arguments& arguments) {
    const Json clock = arguments.advanceMs < 0
                           ? control.get("/clock")
                           : control.post("/clock", Json{{"advanceMs", arguments.advanceMs}});
    arguments.json ? printJson(clock)
                   : print(clock.value("now", "") + ", moved on by " +
                           std::to_string(clock.value("advancedMs", std::int64_t{0})) + " ms\n");
}

/// An option whose value becomes a member of the fault rule.
template <class Value>
CLI::Option* ruleOption(CLI::App& command, Json& rule, const std::string& option,
                        const std::string& member, const std::string& help) {
    return command
        .add_option_function<Value>(
            option, [&rule, member](const Value& value) { rule[member] = value; }, help)
        ->type_name(option[0] != '-'             ? ""
                    : std::is_same_v<Value, int> ? "N"
                                                 : "TEXT");
}

void declareFail(CLI::App& app, Arguments& arguments) {
    CLI::App& command = *app.add_subcommand("fail", "make calls fail, or show what will");
    command.footer(
        "Examples:\n"
        "  simctl fail HccAttachVolume refuse --error \"Volume is being moved\"\n"
        "  simctl fail '*' delay --delay-ms 3000 --count 5\n"
        "  simctl fail --kinds");
    Json& rule = arguments.rule;
    ruleOption<std::string>(command, rule, "COMMAND", "command",
                            "such as HccAttachVolume or TarnServer::Get; '*' for every command");
    ruleOption<std::string>(command, rule, "FAULT", "fault", "a name that --kinds shows");
    ruleOption<int>(command, rule, "--count", "count", "how many calls; 0: all (default 1)");
    ruleOption<int>(command, rule, "--after", "after", "how many calls pass first (default 0)");
    ruleOption<int>(command, rule, "--for-ms", "forMs",
                    "how long, from its first strike on (default: ever)");
    ruleOption<std::string>(command, rule, "--error", "error", "the words of a refusal");
    ruleOption<std::string>(command, rule, "--code", "code", "its error state");
    ruleOption<std::string>(command, rule, "--localized", "localized", "its localized words");
    ruleOption<std::string>(command, rule, "--detail", "detail", "its detail");
    ruleOption<std::string>(command, rule, "--document", "document", "the reply document to send");
    ruleOption<int>(command, rule, "--delay-ms", "delayMs", "wait before the reply");
    ruleOption<int>(command, rule, "--chunk", "chunk", "send so many bytes at a time");
    ruleOption<int>(command, rule, "--interval-ms", "intervalMs", "wait between chunks");
    ruleOption<int>(command, rule, "--bytes", "bytes", "bytes sent before the connection ends");
    command.add_flag("--kinds", arguments.listKinds, "show the faults that there are");
    command.add_flag("--commands", arguments.listCommands, "show the commands that can fail");
    command.add_flag("--rules", arguments.listRules, "show the faults that wait for their calls");
    command.add_option("--remove", arguments.removeId, "take back the fault of this id")
        ->type_name("ID");
    command.add_option("--file", arguments.scenarioFile, "add the faults of a scenario file")
        ->type_name("FILE");
}

void declareFilters(CLI::App& command, Arguments& arguments) {
    const auto add = [&](const char* option, const char* name, const char* help) {
        command.add_option(option, arguments.filters[name], help);
    };
    add("--command", "command", "only this command, such as HccAttachVolume");
    add("--cluster", "cluster", "only this cluster, by its id");
    add("--outcome", "outcome", "only those that ended so: ok, refused, \"not run\", failed");
    add("--fault", "fault", "only those that this fault struck; '*' for any");
}

void declareVerify(CLI::App& app, Arguments& arguments) {
    CLI::App& command = *app.add_subcommand(
        "verify", "compare the calls that came with what was expected; status 1 when they differ");
    command.add_option("FILE", arguments.expectationFile, "the expectations (JSON)")->type_name("");
    command
        .add_option("--rules", arguments.rules,
                    "rules that every cluster keeps, with commas between, or all")
        ->delimiter(',')
        ->allow_extra_args(false)
        ->type_name("NAME");
    command.add_option("--since", arguments.since, "look at calls after the one of this id")
        ->type_name("ID");
    command.add_option("--wait", arguments.waitSeconds, "give it so long to pass (default 0)")
        ->type_name("SECONDS");
    command.add_option("--junit", arguments.junitFile, "write a JUnit report")->type_name("FILE");
    CLI::App& record = *app.add_subcommand("record", "write what came as a file for verify");
    record.add_option("FILE", arguments.recordFile, "where to; without it, standard output")
        ->type_name("");
    record.add_option("--since", arguments.since, "only calls after the one of this id")
        ->type_name("ID");
    declareFilters(record, arguments);
    app.add_subcommand("rules", "show the rules that verify knows");
}

void declareChanges(CLI::App& app, Arguments& arguments) {
    CLI::App& reset = *app.add_subcommand("reset", "go back to the start");
    reset.add_option("WHAT", arguments.what, "faults, log, state or all")
        ->check(CLI::IsMember({"faults", "log", "state", "all"}))
        ->capture_default_str();
    CLI::App& seed = *app.add_subcommand("seed", "show the seed, or start from another one");
    seed.add_option("FILE", arguments.seedFile, "the new seed (JSON)")->type_name("");
    seed.add_option("--volumes", arguments.volumes, "volumes to make besides (default 0)")
        ->type_name("N");
    CLI::App& clock = *app.add_subcommand("clock", "show the simulator's time, or move it on");
    clock
        .add_option("--advance-ms", arguments.advanceMs,
                    "end what waits so much sooner: late replies, faults that last")
        ->check(
            CLI::Range(std::int64_t{0}, std::numeric_limits<std::int64_t>::max()).description(""))
        ->type_name("N");
}

void declare(CLI::App& app, Arguments& arguments) {
    // run() refuses a missing subcommand: the parser would call it missing where it is
    // misspelled, and not name the word.
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.set_version_flag("--version", PROGRAM_VERSION);
    app.add_option("--port", arguments.port, "the simulator's port, 1 to 65535")
        ->check(CLI::Range(1, 65535).description(""))
        ->type_name("N")
        ->capture_default_str();
    app.add_option("--control", arguments.place.socketPath, "the simulator's control socket")
        ->type_name("PATH")
        ->envname("SANSIM_CONTROL");
    app.add_option("--url", arguments.place.url,
                   "the simulator's page, such as http://host:8081/, as it was printed")
        ->type_name("URL")
        ->envname("SANSIM_URL");
    app.add_option("--token-file", arguments.tokenFile, "the token for that URL")
        ->type_name("FILE")
        ->envname("SANSIM_TOKEN_FILE");
    app.add_flag("--json", arguments.json, "JSON instead of text");
    CLI::App& log = *app.add_subcommand("log", "show the last exchanges");
    log.add_option("-n,--last", arguments.last, "how many")->type_name("N")->capture_default_str();
    log.add_flag("-f,--follow", arguments.follow, "go on showing new ones");
    declareFilters(log, arguments);
    app.add_subcommand("state", "show clusters, servers, volumes");
    declareFail(app, arguments);
    declareVerify(app, arguments);
    declareChanges(app, arguments);
}

sim::ControlPlace placeOf(const Arguments& arguments) {
    sim::ControlPlace place = arguments.place;
    if (place.socketPath.empty()) {
        place.socketPath = sim::defaultControlPath(arguments.port);
    }
    // The page's address may come as the simulator printed it, with the token behind "#".
    constexpr std::string_view kToken = "#token=";
    if (const auto at = place.url.find(kToken); at != std::string::npos) {
        place.token = place.url.substr(at + kToken.size());
        place.url.resize(at);
    }
    place.url.resize(place.url.find_last_not_of('/') + 1);
    if (!arguments.tokenFile.empty()) {
        place.token = sim::readSecretFile(arguments.tokenFile);
    }
    return place;
}

int run(const CLI::App& app, const Arguments& arguments) {
    Control control(placeOf(arguments));
    if (app.got_subcommand("verify")) {
        return verify(control, arguments);
    }
    using Command = void (*)(Control&, const Arguments&);
    constexpr std::pair<const char*, Command> kCommands[] = {
        {"log", showLog},
        {"state", showState},
        {"fail", fail},
        {"record", record},
        {"rules", showRules},
        {"seed", seed},
        {"clock", clock},
        {"reset",
         [](Control& one, const Arguments& given) {
             one.post("/reset", Json{{"what", given.what}});
         }},
    };
    for (const auto& [name, command] : kCommands) {
        if (app.got_subcommand(name)) {
            command(control, arguments);
            return 0;
        }
    }
    throw CLI::RequiredError("A subcommand");
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
        "Looks at a running array simulator, makes it fail on demand, and judges what came.",
        "simctl");
    Arguments arguments;
    declare(app, arguments);
    try {
        app.parse(argc, argv);
        return run(app, arguments);
    } catch (const CLI::ParseError& failure) {
        return app.exit(failure) == 0 ? 0 : kWrongUsage;
    } catch (const std::exception& failure) {
        std::fprintf(stderr, "simctl: %s\n", text::oneLine(failure.what()).c_str());
        return 1;
    }
}
