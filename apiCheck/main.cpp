// Asks an API manager what the service would ask it, and says what the service could not use.
#include <CLI/CLI.hpp>
#include <algorithm>
#include <cstdlib>
#include <iostream>

#include "apiCheck/apiCheck.h"
#include "apiMgmt/common/ipc/apiMgrPort.h"

namespace {

using Verdict = APICheckResult::Verdict;

constexpr int kMaxPort = 65535;
constexpr int kMaxTimeout = 3600;
constexpr int kWrongUsage = 64;

const char* textOf(Verdict verdict) {
    switch (verdict) {
        case Verdict::Usable:
            return "ok    ";
        case Verdict::Odd:
            return "odd   ";
        case Verdict::Wrong:
            return "WRONG ";
        default:
            return "SILENT";
    }
}

// 0 when all can be used, 1 when something cannot, 3 when nobody answers.
int exitStatus(const std::vector<APICheckResult>& results) {
    const auto has = [&results](Verdict verdict) {
        return std::any_of(results.begin(), results.end(), [verdict](const APICheckResult& result) {
            return result.verdict == verdict;
        });
    };
    return has(Verdict::Silent) ? 3 : has(Verdict::Wrong) ? 1 : 0;
}

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
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& failure) {
        return app.exit(failure) == 0 ? 0 : kWrongUsage;
    }
    if (const char* credentials = std::getenv("SANAPICHECK_CREDENTIALS"); credentials != nullptr) {
        plan.credentials = credentials;
    }
    const std::vector<APICheckResult> results = checkApiManager(plan);
    for (const APICheckResult& result : results) {
        std::cout << textOf(result.verdict) << "  " << result.question << ": " << result.words
                  << '\n';
    }
    std::cout.flush();
    std::_Exit(exitStatus(results));  // A question without an answer still has its thread.
}
