#include "client/call/exitStatus.h"

namespace client {

const char* textOf(ExitStatus status) {
    switch (status) {
        case ExitStatus::Done:
            return "done";
        case ExitStatus::RefusedByArray:
            return "refused by the array";
        case ExitStatus::RefusedByService:
            return "refused by the service";
        case ExitStatus::NoAnswer:
            return "no answer";
        case ExitStatus::OutcomeUnknown:
            return "outcome unknown";
        case ExitStatus::Interrupted:
            return "interrupted";
        case ExitStatus::WrongUsage:
            break;
    }
    return "wrong usage";
}

}  // namespace client
