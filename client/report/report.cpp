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
                     {"seconds", outcome.seconds}};
    if (!outcome.isDone()) {
        document["faultCode"] = outcome.faultCode;
        document["text"] = outcome.text;
    }
    return document;
}

void printJson(const Json& document) {
    std::cout << document.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void reportOutcome(Form form, const std::string& operation, const Outcome& outcome,
                   const Json& reply) {
    if (form == Form::Machine) {
        printJson(withReply(operation, outcome, reply));
    } else if (outcome.isDone()) {
        std::cout << operation << ": done\n";
        printFields("", reply);
    } else {
        std::cerr << "sanctl: " << operation << ": " << failureText(outcome) << '\n';
    }
}

void reportPing(Form form, const Outcome& outcome, const Json& reply) {
    if (form == Form::Machine) {
        reportOutcome(form, "Ping", outcome, reply);
    } else if (outcome.isDone()) {
        std::printf("PING OK: answered in %.1f ms | time=%.6fs\n", outcome.seconds * kMilliseconds,
                    outcome.seconds);
    } else {
        std::printf("PING FAILED: %s | time=%.6fs\n", failureText(outcome).c_str(),
                    outcome.seconds);
    }
}

}  // namespace client
