#include <algorithm>
#include <array>

#include "sim/apiReply.h"
#include "sim/apiRequest.h"
#include "sim/command.h"
#include "sim/refusal.h"

namespace sim {

namespace {

std::string ping(ArrayState& /*state*/, const ApiRequest& /*request*/) {
    return returnTrue();
}

// How to add a command: write its function, which takes what it needs from the request, works
// on the state, raises Refusal with a sentence that says what is wrong, and returns the value
// element of the reply; then add its row here. Every reply needs a value: a success without
// one is a malformed reply.
// clang-format off
const std::array commands = {
    // object         command  needs credentials  required                     function
    Command{"TarnHostCache", "Ping", false,       {},                          ping},
};
// clang-format on

void checkRequired(const Command& command, const ApiRequest& request) {
    for (const std::string_view name : command.required) {
        if (request.text(std::string(name)).empty()) {
            throw Refusal("InvalidArguments",
                          "Required attribute " + std::string(name) + " is missing",
                          request.label() + " needs it.");
        }
    }
}

}  // namespace

std::string runCommand(ArrayState& state, const ApiRequest& request, bool authorised) {
    const auto command = std::find_if(commands.begin(), commands.end(), [&](const Command& row) {
        return row.object == request.object && row.name == request.command;
    });
    if (command == commands.end()) {
        throw Refusal("NotSupported", "Command " + request.label() + " is not supported",
                      "The array simulator does not know this command.");
    }
    if (command->needsCredentials && !authorised) {
        throw Refusal("AccessDenied", "Access denied",
                      "The array does not accept the credentials of this request.");
    }
    checkRequired(*command, request);
    return command->run(state, request);
}

std::span<const Command> allCommands() {
    return commands;
}

}  // namespace sim
