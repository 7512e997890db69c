#include "client/report/report.h"

#include <algorithm>
#include <cstdio>
#include <iostream>

#include "apiMgmt/common/text/safeText.h"

namespace client {

namespace {

constexpr double kMilliseconds = 1000;

bool isWorthShowing(const Json& value) {
    return !value.is_null() && !value.empty();
}

// One line a value, with its path: "origScsiInfo.deviceId: 600a...".
void printFields(const std::string& path, const Json& value) {
    if (value.is_object()) {
        const std::string prefix = path.empty() ? "" : path + ".";
        for (const auto& [name, member] : value.items()) {
            printFields(std::string(prefix).append(name), member);
        }
    } else if (value.is_array()) {
        for (const auto& item : value) {
            printFields(path, item);
        }
    } else if (isWorthShowing(value)) {
        const std::string shown = value.is_string() ? value.get<std::string>() : value.dump();
        std::cout << "  " << path << ": " << text::printable(shown) << '\n';
    }
}

Json withReply(const std::string& operation, const Outcome& outcome, const Json& reply) {
    Json document = outcomeJson(operation, outcome);
    if (outcome.isDone()) {
        document["reply"] = reply;
    }
    return document;
}

// The statuses of monitoring systems, whose plug-ins end with them.
struct Monitoring {
    int exitCode;
    const char* name;
};

Monitoring monitoringOf(ExitStatus status) {
    switch (status) {
        case ExitStatus::Done:
            return {0, "OK"};
        case ExitStatus::RefusedByService:
            return {1, "WARNING"};
        case ExitStatus::RefusedByArray:
        case ExitStatus::NoAnswer:
        case ExitStatus::OutcomeUnknown:
            return {2, "CRITICAL"};
        default:
            return {3, "UNKNOWN"};
    }
}

}  // namespace

std::string failureText(const Outcome& outcome) {
    std::string why = outcome.text;
    std::replace(why.begin(), why.end(), '\n', ' ');
    return std::string(textOf(outcome.status)) + ": " +
           (why.empty() ? "(no reason given)" : text::oneLine(why));
}

Json outcomeJson(const std::string& operation, const Outcome& outcome) {
    Json document = {{"operation", operation},
                     {"status", textOf(outcome.status)},
                     {"exitStatus", static_cast<int>(outcome.status)},
                     {"seconds", outcome.seconds},
                     {"attempts", outcome.attempts}};
    if (!outcome.isDone()) {
        document["faultCode"] = outcome.faultCode;
        document["text"] = outcome.text;
        document["mayHaveBeenDone"] = outcome.mayHaveBeenDone;
    }
    return document;
}

void printJson(const Json& document) {
    std::cout << document.dump(2, ' ', false, Json::error_handler_t::replace) << std::endl;
}

void reportOutcome(Form form, const std::string& operation, const Outcome& outcome,
                   const Json& reply, const Warnings& warnings) {
    if (form == Form::Machine) {
        Json document = withReply(operation, outcome, reply);
        if (!warnings.empty()) {
            document["warnings"] = warnings;
        }
        printJson(document);
        return;
    }
    for (const std::string& warning : warnings) {
        std::cerr << "sanctl: warning: " << text::oneLine(warning) << '\n';
    }
    if (outcome.isDone()) {
        std::cout << operation << ": done\n";
        printFields("", reply);
        return;
    }
    std::cerr << "sanctl: " << operation << ": " << failureText(outcome) << '\n';
    if (outcome.mayHaveBeenDone) {
        std::cerr << "sanctl: the array may have done it all the same\n";
    }
}

void reportPing(Form form, const Outcome& outcome, const Json& reply) {
    if (form == Form::Machine || (form == Form::Human && !outcome.isDone())) {
        reportOutcome(form, "Ping", outcome, reply, {});
    } else if (outcome.isDone()) {
        std::printf("PING OK: answered in %.1f ms | time=%.6fs\n", outcome.seconds * kMilliseconds,
                    outcome.seconds);
    } else {
        std::printf("PING %s: %s | time=%.6fs\n", monitoringOf(outcome.status).name,
                    failureText(outcome).c_str(), outcome.seconds);
    }
}

void reportError(Form form, ExitStatus status, const std::string& text) {
    if (form == Form::Machine) {
        printJson(
            {{"status", textOf(status)}, {"exitStatus", static_cast<int>(status)}, {"text", text}});
    } else if (form == Form::Monitoring) {
        std::cout << "PING UNKNOWN: " << text::oneLine(text) << '\n';
    } else {
        std::cerr << "sanctl: " << text::printable(text) << '\n';
    }
}

int exitCode(Form form, ExitStatus status) {
    return form == Form::Monitoring ? monitoringOf(status).exitCode : static_cast<int>(status);
}

}  // namespace client
