#include "client/call/outcome.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace client {

namespace {

// What the service says when the array's answer was none that it can use. Nobody knows then
// whether the array did the work.
constexpr std::array<std::string_view, 4> kUnusableAnswers = {
    "Received Invalid/NULL response from tarn",
    "Invalid content in response message",
    "Invalid response in return XML",
    "Failed to attach volume",
};
constexpr int kProxyWantsCaller = 407;
constexpr int kBadGateway = 502;
constexpr int kServiceUnavailable = 503;
constexpr int kGatewayTimeout = 504;
// The system's clock for a wait may end it a little early.
constexpr double kClockStep = 0.01;

std::string orEmpty(const char* text) {
    return text == nullptr ? "" : text;
}

std::string localName(const std::string& code) {
    return code.substr(code.find_last_of(":\"") + 1);
}

// The code of the fault that came from the server; empty when it sent none.
std::string receivedFault(soap& context) {
    const bool isFault = context.error == SOAP_FAULT || context.error == SOAP_CLI_FAULT ||
                         context.error == SOAP_SVR_FAULT || context.error == SOAP_VERSIONMISMATCH ||
                         context.error == SOAP_MUSTUNDERSTAND;
    return isFault && context.fault != nullptr ? localName(orEmpty(*soap_faultcode(&context))) : "";
}

bool isHttpStatus(int error) {
    return error >= 200 && error < 600;
}

bool isRedirect(int error) {
    return error >= 300 && error < 400;
}

bool isHttpRefusal(int error) {
    return error >= 400 && error < 500 && error != kProxyWantsCaller;
}

ExitStatus statusOf(const Outcome& outcome, int error) {
    if (outcome.faultCode.starts_with("Server") || outcome.faultCode == "Receiver") {
        const bool isUnknown = std::find(kUnusableAnswers.begin(), kUnusableAnswers.end(),
                                         outcome.text) != kUnusableAnswers.end();
        return isUnknown ? ExitStatus::OutcomeUnknown : ExitStatus::RefusedByArray;
    }
    return !outcome.faultCode.empty() || isHttpRefusal(error) ? ExitStatus::RefusedByService
                                                              : ExitStatus::NoAnswer;
}

bool isPerhapsDone(ExitStatus status, int error, bool wasSent) {
    const bool isTurnedAway =
        isRedirect(error) || error == kProxyWantsCaller || error == kServiceUnavailable;
    return status == ExitStatus::OutcomeUnknown ||
           (status == ExitStatus::NoAnswer && wasSent && !isTurnedAway);
}

std::string textOfHttpStatus(int error, const CallFacts& facts) {
    std::string text = "HTTP status " + std::to_string(error);
    if (isRedirect(error)) {
        text += ": a redirect to " + (facts.location.empty() ? "nowhere" : facts.location) +
                ", which is not followed; give the right place as --url";
    } else if (error == kProxyWantsCaller) {
        text += ": a proxy stands before the service and asks who calls";
    } else if (error == kBadGateway || error == kGatewayTimeout) {
        text += ": a proxy stands before the service and got no answer from it";
    } else if (error == kServiceUnavailable) {
        text += ": the service, or a proxy before it, is too busy";
    }
    return facts.via.empty() ? text : text + " (by way of " + facts.via + ")";
}

std::string within(const char* what, int seconds) {
    return std::string(what) + " within " + std::to_string(seconds) + " s";
}

// The engine has one error for a connection that ended and for one that stayed silent, and tells
// an answer that is no SOAP by the HTTP status alone.
std::string textOfFailure(Proxy& proxy, const CallFacts& facts, const ServiceOptions& options) {
    const int error = proxy.error;
    const double waited = facts.seconds + kClockStep;
    const int connectLimit = std::min(options.connectSeconds, options.timeoutSeconds);
    if (!facts.wasSent && !isHttpStatus(error) && waited >= connectLimit) {
        return within("no connection", connectLimit);
    }
    if (error == SOAP_EOF && waited >= options.timeoutSeconds) {
        return within("no whole answer", options.timeoutSeconds);
    }
    if (error == SOAP_EOF) {
        return "the connection ended before the answer did";
    }
    if (error > 0 && error == proxy.status && !isHttpStatus(error)) {
        // The engine would read the number as an error of its own.
        return "HTTP status " + std::to_string(error) + ", which does not exist";
    }
    if (error >= 200 && error < 300) {
        return "the answer is no SOAP message";
    }
    return isHttpStatus(error) ? textOfHttpStatus(error, facts) : engineText(proxy);
}

}  // namespace

std::string engineText(Proxy& proxy) {
    soap_set_fault(&proxy);
    const std::string text = orEmpty(proxy.soap_fault_string());
    const std::string detail = orEmpty(proxy.soap_fault_detail());
    return detail.empty() ? text : text + " (" + detail + ")";
}

Outcome outcomeOf(Proxy& proxy, const CallFacts& facts, const ServiceOptions& options) {
    Outcome outcome;
    outcome.seconds = facts.seconds;
    if (proxy.error == SOAP_OK) {
        return outcome;
    }
    outcome.faultCode = receivedFault(proxy);
    outcome.text = outcome.faultCode.empty() ? textOfFailure(proxy, facts, options)
                                             : orEmpty(proxy.soap_fault_string());
    outcome.status = statusOf(outcome, proxy.error);
    outcome.mayHaveBeenDone = isPerhapsDone(outcome.status, proxy.error, facts.wasSent);
    return outcome;
}

}  // namespace client
