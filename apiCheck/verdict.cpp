#include "apiCheck/verdict.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>

namespace {

using Verdict = CheckResult::Verdict;

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

int exitStatus(const std::vector<CheckResult>& results) {
    const auto has = [&results](Verdict verdict) {
        return std::any_of(results.begin(), results.end(), [verdict](const CheckResult& result) {
            return result.verdict == verdict;
        });
    };
    return has(Verdict::Silent) ? 3 : has(Verdict::Wrong) ? 1 : 0;
}

}  // namespace

void runCheckProgram(CLI::App& app, int argc, char** argv,
                     const std::function<std::vector<CheckResult>()>& check) {
    try {
        app.parse(argc, argv);
    } catch (const CLI::ParseError& failure) {
        std::exit(app.exit(failure) == 0 ? 0 : kWrongUsage);
    }
    const std::vector<CheckResult> results = check();
    for (const CheckResult& result : results) {
        std::cout << textOf(result.verdict) << "  " << result.question << ": " << result.words
                  << '\n';
    }
    std::cout.flush();
    std::_Exit(exitStatus(results));
}
