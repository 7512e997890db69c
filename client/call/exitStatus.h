#pragma once

namespace client {

/// How a run of sanctl ends, for scripts and monitoring.
enum class ExitStatus {
    done = 0,
    refusedByArray = 1,    ///< The array refused: a server fault.
    refusedByService = 2,  ///< The service refused before it asked the array: a client fault.
    noAnswer = 3,          ///< No answer, or none that can be read.
    wrongUsage = 64,       ///< The command line or a file that it names is wrong.
};

/// "done", "refused by the array" and so on.
const char* textOf(ExitStatus status);

}  // namespace client
