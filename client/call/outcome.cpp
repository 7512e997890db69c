#include "client/call/outcome.h"

namespace client {

namespace {

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

bool isHttpRefusal(int error) {
    return error >= 400 && error < 500;
}

ExitStatus statusOf(const std::string& faultCode, int error) {
    if (faultCode.starts_with("Server") || faultCode == "Receiver") {
        return ExitStatus::RefusedByArray;
    }
    return !faultCode.empty() || isHttpRefusal(error) ? ExitStatus::RefusedByService
                                                      : ExitStatus::NoAnswer;
}

// The engine has one error for a connection that ended and for one that stayed silent, and tells
// an answer that is no SOAP by the HTTP status alone.
std::string textOfFailure(Proxy& proxy, double seconds, int timeoutSeconds) {
    const int error = proxy.error;
    if (error == SOAP_EOF && seconds >= timeoutSeconds) {
        return "no whole answer within " + std::to_string(timeoutSeconds) + " s";
    }
    if (error == SOAP_EOF) {
        return "the connection ended before the answer did";
    }
    if (error >= 200 && error < 300) {
        return "the answer is no SOAP message";
    }
    return isHttpStatus(error) ? "HTTP status " + std::to_string(error) : engineText(proxy);
}

}  // namespace

std::string engineText(Proxy& proxy) {
    soap_set_fault(&proxy);
    const std::string text = orEmpty(proxy.soap_fault_string());
    const std::string detail = orEmpty(proxy.soap_fault_detail());
    return detail.empty() ? text : text + " (" + detail + ")";
}

Outcome outcomeOf(Proxy& proxy, double seconds, int timeoutSeconds) {
    Outcome outcome;
    outcome.seconds = seconds;
    if (proxy.error == SOAP_OK) {
        return outcome;
    }
    outcome.faultCode = receivedFault(proxy);
    outcome.status = statusOf(outcome.faultCode, proxy.error);
    outcome.text = outcome.faultCode.empty() ? textOfFailure(proxy, seconds, timeoutSeconds)
                                             : orEmpty(proxy.soap_fault_string());
    return outcome;
}

}  // namespace client
