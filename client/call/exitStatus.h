#pragma once

namespace client {

/// How a run of sanctl ends, for scripts and monitoring.
enum class ExitStatus {
    Done = 0,
    RefusedByArray = 1,    ///< The array refused: a server fault.
    RefusedByService = 2,  ///< The service refused before it asked the array: a client fault.
    NoAnswer = 3,          ///< No answer, or none that can be read.
    OutcomeUnknown = 4,    ///< The service cannot say whether the array did the work.
    WrongUsage = 64,       ///< The command line or a file that it names is wrong.
    Interrupted = 130,     ///< By a signal, such as that of Ctrl-C.
};

/// "done", "refused by the array" and so on.
const char* textOf(ExitStatus status);

}  // namespace client
