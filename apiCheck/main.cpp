// Asks an API manager what the service would ask it, and says what the service could not use.
#include <CLI/CLI.hpp>
#include <cstdlib>

#include "apiCheck/apiCheck.h"
#include "apiMgmt/common/ipc/apiMgrPort.h"

namespace {

constexpr int kMaxPort = 65535;
constexpr int kMaxTimeout = 3600;

}  // namespace

int main(int argc, char** argv) {
    CLI::App app(
        "Asks an API manager at 127.0.0.1 what the service would ask it, changes nothing,\n"
        "and says in words which replies the service could not use.",
        "sanApiCheck");
    APICheckPlan plan;
    plan.port = getApiMgrPort();
    plan.credentials = "check:check";
    app.add_option("PORT", plan.port, "Its port; otherwise that of the service database, or 35000")
        ->check(CLI::Range(1, kMaxPort).description(""));
    app.add_option("--timeout", plan.timeoutSeconds, "How long to wait for each reply")
        ->check(CLI::Range(1, kMaxTimeout).description(""))
        ->type_name("SECONDS")
        ->capture_default_str();
    app.set_version_flag("--version", PROGRAM_VERSION);
    app.footer(
        "The caller is check:check; SANAPICHECK_CREDENTIALS (user:password) names another.\n"
        "Exit status: 0 all can be used, 1 something cannot, 3 no answer, 64 wrong usage.");
    runCheckProgram(app, argc, argv, [&plan] {
        if (const char* credentials = std::getenv("SANAPICHECK_CREDENTIALS")) {
            plan.credentials = credentials;
        }
        return checkApiManager(plan);
    });
}
