#pragma once

#include <memory>
#include <vector>

#include "client/call/session.h"
#include "client/commandLine/fieldOptions.h"
#include "client/report/replyJson.h"

namespace client {

/// One operation with its request, for a subcommand: declare the options, parse the command
/// line, then send.
class Request {
public:
    Request() = default;
    virtual ~Request() = default;
    Request(const Request&) = delete;
    Request& operator=(const Request&) = delete;

    virtual void declareOptions(FieldOptions& options) = 0;
    virtual Outcome send(Session& session) = 0;
    /// What the reply carried. Valid after a call that was done, until the next one.
    virtual Json reply() const = 0;
};

struct Operation {
    const char* name;  ///< As on the wire, such as "AddHccToSan".
    const char* help;
    std::function<std::unique_ptr<Request>()> makeRequest;
};

/// All operations of the service.
const std::vector<Operation>& allOperations();

/// The subcommand of an operation: "add-hcc-to-san" for "AddHccToSan".
std::string commandName(const std::string& operation);

}  // namespace client
