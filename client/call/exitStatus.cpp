#include "client/call/exitStatus.h"

namespace client {

const char* textOf(ExitStatus status) {
    switch (status) {
        case ExitStatus::done:
            return "done";
        case ExitStatus::refusedByArray:
            return "refused by the array";
        case ExitStatus::refusedByService:
            return "refused by the service";
        case ExitStatus::noAnswer:
            return "no answer";
        case ExitStatus::wrongUsage:
            break;
    }
    return "wrong usage";
}

}  // namespace client
