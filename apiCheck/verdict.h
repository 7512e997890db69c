#pragma once

#include <CLI/CLI.hpp>
#include <functional>
#include <string>
#include <vector>

/// What one question of a check showed.
struct CheckResult {
    enum class Verdict {
        Usable,
        Odd,     ///< It can be used; its maker should know.
        Wrong,   ///< It cannot be used.
        Silent,  ///< Nobody is there, or nothing came in time.
    };

    std::string question;  ///< Such as "Ping".
    Verdict verdict = Verdict::Usable;
    std::string words;  ///< What was seen and, when it is wrong, why.
};

/// The life of a program that checks: reads the command line, checks, prints a line for each result
/// and ends the process, also when threads of the check still wait. Exit status: 0 all can be used,
/// 1 something cannot, 3 no answer, 64 wrong usage.
[[noreturn]] void runCheckProgram(CLI::App& app, int argc, char** argv,
                                  const std::function<std::vector<CheckResult>()>& check);
