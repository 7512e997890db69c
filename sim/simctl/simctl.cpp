// Looks at a running array simulator and makes it fail on demand.
#include <httplib.h>

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>
#include <stdexcept>
#include <string>
#include <thread>

#include "apiMgmt/common/ipc/apiMgrPort.h"
#include "sim/control/controlSocket.h"
#include "sim/faults/faults.h"
#include "sim/simctl/stateText.h"
#include "sim/text/jsonText.h"

namespace {

using sim::Json;

constexpr const char* jsonType = "application/json";

struct Arguments {
    std::string control;
    int port = getApiMgrPort();
    bool json = false;
    std::size_t last = 10;
    bool follow = false;
    bool listKinds = false;
    bool listRules = false;
    std::uint64_t removeId = 0;
    std::string scenarioFile;
    std::string what = "all";
    Json rule = Json::object();
};

class Control {
public:
    explicit Control(const Arguments& arguments)
        : m_path(arguments.control.empty() ? sim::defaultControlPath(arguments.port)
                                           : arguments.control),
          m_client(m_path) {
        m_client.set_address_family(AF_UNIX);
    }

    Json get(const std::string& path) { return read(m_client.Get(path)); }
    Json post(const std::string& path, const Json& body) {
        return read(m_client.Post(path, sim::jsonText(body), jsonType));
    }
    Json remove(const std::string& path) { return read(m_client.Delete(path)); }

private:
    std::string m_path;
    httplib::Client m_client;

    Json read(const httplib::Result& result) {
        if (!result) {
            throw std::runtime_error("no simulator answers at " + m_path);
        }
        Json json = Json::parse(result->body, nullptr, false);
        if (result->status != 200) {
            throw std::runtime_error(json.is_object() ? json.value("error", "refused")
                                                      : "unexpected answer");
        }
        return json;
    }
};

void print(const std::string& text) {
    std::cout << text << std::flush;
}

void printExchanges(const Json& exchanges, bool asJson) {
    for (const Json& exchange : exchanges) {
        print(asJson ? sim::jsonText(exchange) + "\n" : sim::exchangeText(exchange) + "\n");
    }
}

void showLog(Control& control, const Arguments& arguments) {
    std::string query = "last=" + std::to_string(arguments.last);
    std::uint64_t seen = 0;
    do {
        const Json exchanges = control.get("/api/exchanges?" + query);
        printExchanges(exchanges, arguments.json);
        if (!exchanges.empty()) {
            seen = exchanges.back()["id"].get<std::uint64_t>();
        }
        if (arguments.follow) {
            query = "since=" + std::to_string(seen);
            std::this_thread::sleep_for(std::chrono::milliseconds(500));
        }
    } while (arguments.follow);
}

void showState(Control& control, const Arguments& arguments) {
    const Json state = control.get("/api/state");
    print(arguments.json ? sim::jsonText(state, 2) + "\n" : sim::stateText(state));
}

void fail(Control& control, const Arguments& arguments) {
    if (arguments.listKinds) {
        // Known without a simulator, so that the completion and a reader need none.
        const Json kinds = sim::faultKinds();
        print(arguments.json ? sim::jsonText(kinds, 2) + "\n" : sim::faultKindsText(kinds));
    } else if (arguments.listRules) {
        const Json rules = control.get("/api/faults")["rules"];
        print(arguments.json ? sim::jsonText(rules, 2) + "\n" : sim::faultRulesText(rules));
    } else if (arguments.removeId != 0) {
        control.remove("/api/faults?id=" + std::to_string(arguments.removeId));
    } else if (!arguments.scenarioFile.empty()) {
        control.post("/api/scenario", sim::readJsonFile(arguments.scenarioFile));
    } else if (!arguments.rule.contains("fault")) {
        throw CLI::RequiredError("COMMAND and FAULT, or one of the options above,");
    } else {
        const Json rule = control.post("/api/faults", arguments.rule);
        print(arguments.json ? sim::jsonText(rule, 2) + "\n"
                             : sim::faultRulesText(Json::array({rule})));
    }
}

/// An option whose value becomes a member of the fault rule.
template <class Value>
void ruleOption(CLI::App& command, Json& rule, const std::string& option, const std::string& member,
                const std::string& help) {
    command.add_option_function<Value>(
        option, [&rule, member](const Value& value) { rule[member] = value; }, help);
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
    command.add_flag("--rules", arguments.listRules, "show the faults that wait for their calls");
    command.add_option("--remove", arguments.removeId, "take back the fault of this id");
    command.add_option("--file", arguments.scenarioFile, "add the faults of a scenario file")
        ->type_name("FILE");
}

void declare(CLI::App& app, Arguments& arguments) {
    // None is let pass by the parser, so that it names what stands in the place of one.
    app.require_subcommand(0, 1);
    app.fallthrough();
    app.set_version_flag("--version", PROGRAM_VERSION);
    app.add_option("--port", arguments.port, "the simulator's port")
        ->check(CLI::Range(1, 65535).name("N"))
        ->capture_default_str();
    app.add_option("--control", arguments.control, "the simulator's control socket")
        ->type_name("PATH")
        ->envname("SANSIM_CONTROL");
    app.add_flag("--json", arguments.json, "JSON instead of text");
    CLI::App& log = *app.add_subcommand("log", "show the last exchanges");
    log.add_option("-n,--last", arguments.last, "how many")->capture_default_str();
    log.add_flag("-f,--follow", arguments.follow, "go on showing new ones");
    app.add_subcommand("state", "show clusters, servers, volumes");
    declareFail(app, arguments);
    CLI::App& reset = *app.add_subcommand("reset", "go back to the start");
    reset.add_option("WHAT", arguments.what, "faults, log, state or all")
        ->check(CLI::IsMember({"faults", "log", "state", "all"}))
        ->capture_default_str();
}

void run(const CLI::App& app, const Arguments& arguments) {
    Control control(arguments);
    if (app.got_subcommand("log")) {
        showLog(control, arguments);
    } else if (app.got_subcommand("state")) {
        showState(control, arguments);
    } else if (app.got_subcommand("fail")) {
        fail(control, arguments);
    } else if (app.got_subcommand("reset")) {
        control.post("/api/reset", Json{{"what", arguments.what}});
    } else {
        throw CLI::RequiredError("A subcommand");
    }
}

}  // namespace

int main(int argc, char** argv) {
    CLI::App app("Looks at a running array simulator and makes it fail on demand.", "simctl");
    Arguments arguments;
    declare(app, arguments);
    try {
        app.parse(argc, argv);
        run(app, arguments);
        return 0;
    } catch (const CLI::ParseError& problem) {
        return app.exit(problem) == 0 ? 0 : 64;
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "simctl: %s\n", problem.what());
        return 1;
    }
}
