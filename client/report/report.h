#pragma once

#include "client/call/session.h"
#include "client/report/replyJson.h"

namespace client {

/// How results are shown: for people or, as one JSON document, for programs.
enum class Form { Human, Machine };

/// The result of one operation. What went well, and JSON, goes to the standard output; what went
/// wrong to the error stream. `reply` counts only when the outcome is done.
void reportOutcome(Form form, const std::string& operation, const Outcome& outcome,
                   const Json& reply);

/// The result of a Ping: for people one line on the standard output whether it went well or
/// not, with the time in the form that monitoring systems read.
void reportPing(Form form, const Outcome& outcome, const Json& reply);

/// One line for a failure, safe for a terminal: "refused by the array: Volume v9 is unknown".
std::string failureText(const Outcome& outcome);

/// What an outcome holds, without the reply.
Json outcomeJson(const std::string& operation, const Outcome& outcome);

/// A document on the standard output; what is not UTF-8 in it is replaced.
void printJson(const Json& document);

}  // namespace client
