#include "client/call/retry.h"

#include <algorithm>
#include <array>

namespace client {

namespace {

// The others change who is a member or whose a volume is: the array refuses the second call because
// of the first, or takes away what somebody else has made since. How to add one: its name.
constexpr std::array<std::string_view, 8> kRepeatable = {
    "Ping",
    "RenameHccInSan",
    "NewPrimaryCfmAddresses",
    "HccAttachVolume",
    "MakeDataAvailable",
    "MakeDataUnavailable",
    "FlushComplete",
    "SnapshotPrepareComplete",
};

bool isOpen(const Outcome& outcome) {
    return outcome.status == ExitStatus::NoAnswer || outcome.status == ExitStatus::OutcomeUnknown;
}

}  // namespace

bool mayBeRepeated(std::string_view operation) {
    return std::find(kRepeatable.begin(), kRepeatable.end(), operation) != kRepeatable.end();
}

Outcome withRetries(const RetryPlan& plan, std::string_view operation, const Stop& stop,
                    const std::function<Outcome()>& call) {
    const bool isRepeatable = plan.isForced || mayBeRepeated(operation);
    Outcome outcome = call();
    while (outcome.attempts <= plan.times && isOpen(outcome) &&
           (isRepeatable || !outcome.mayHaveBeenDone) && stop.pause(plan.delaySeconds)) {
        const Outcome earlier = outcome;
        outcome = call();
        outcome.attempts = earlier.attempts + 1;
        outcome.mayHaveBeenDone =
            !outcome.isDone() && (outcome.mayHaveBeenDone || earlier.mayHaveBeenDone);
    }
    return outcome;
}

}  // namespace client
