#pragma once

#include <string>
#include <vector>

#include "client/call/session.h"
#include "client/report/replyJson.h"

namespace client {

/// How results are shown: for people, as one JSON document for programs, or as the one line of a
/// check that a monitoring system runs.
enum class Form { Human, Machine, Monitoring };

using Warnings = std::vector<std::string>;

/// The result of one operation. What went well, and JSON, goes to the standard output; what went
/// wrong to the error stream, as do warnings unless they stand in the JSON document. `reply`
/// counts only when the outcome is done.
void reportOutcome(Form form, const std::string& operation, const Outcome& outcome,
                   const Json& reply, const Warnings& warnings);

/// The result of a Ping: one that went well is one line on the standard output, with the time in
/// the form that monitoring systems read; for monitoring so is one that failed.
void reportPing(Form form, const Outcome& outcome, const Json& reply);

/// What kept the program from calling at all, or ended it: on the error stream, but as JSON or for
/// monitoring on the standard output.
void reportError(Form form, ExitStatus status, const std::string& text);

/// What the program ends with: the status, but for monitoring 0 for OK, 1 for WARNING, 2 for
/// CRITICAL and 3 for UNKNOWN.
int exitCode(Form form, ExitStatus status);

/// One line for a failure, safe for a terminal: "refused by the array: Volume v9 is unknown".
std::string failureText(const Outcome& outcome);

/// What an outcome holds, without the reply.
Json outcomeJson(const std::string& operation, const Outcome& outcome);

/// A document on the standard output; what is not UTF-8 in it is replaced.
void printJson(const Json& document);

}  // namespace client
