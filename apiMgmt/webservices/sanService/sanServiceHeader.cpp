// What happens to a request before its operation runs, and to the reply's header.

#include <cstring>
#include <exception>
#include <new>
#include <string>
#include <string_view>

#include "apiMgmt/common/text/safeText.h"
#include "apiMgmt/common/utils/secretText.h"
#include "apiMgmt/webservices/sanService/sanService.h"

namespace {

// The version of the messages that this service speaks, as the contract states it.
std::string contractVersion() {
    SanApi::ns1__HccApiXsd xsd;
    xsd.soap_default(nullptr);
    return xsd.version;
}

const std::string kFullVersion = contractVersion();
const std::string kMajorVersion = kFullVersion.substr(0, kFullVersion.find('.', 0));
const std::string kVersionPrefix = kMajorVersion + ".";

constexpr short kSoap11 = 1;
constexpr int kFirstHttpStatus = 200;  // below are the engine's own codes
constexpr char kInternalError[] = "Internal error serving san service request";

}  // namespace

int SANService::dispatch() {
    try {
        return DispatchChecked();
    } catch (const std::exception& failure) {
        LogEscaped(failure.what());
    } catch (...) {
        LogEscaped(nullptr);
    }
    return soap_receiverfault(kInternalError, "");
}

void SANService::LogEscaped(const char* reason) noexcept {
    try {
        ServiceLog::Write(ServiceLog::kEscaped,
                          reason != nullptr
                              ? STRINGUtil::FormatStr("%s. msg(%s)", kInternalError, reason)
                              : STRINGUtil::FormatStr("%s", kInternalError));
    } catch (const std::bad_alloc&) {
        // There is no memory for the line; the client's fault says the same.
    }
}

int SANService::DispatchChecked() {
    m_dispatching = true;
    // The result is not looked at: without an element there is no tag, and what follows reports
    // that.
    (void)soap_peek_element(this);
    if (version == 0) {
        soap_set_version(this, kSoap11);  // where there is no envelope, or one of no version
        if (std::string_view(tag).ends_with(":Envelope")) {
            return KeepHeader(SOAP_VERSIONMISMATCH);
        }
    }
    const bool credentialsRequired = soap_match_tag(this, tag, "ns1:Ping") != SOAP_OK;
    const std::string refusal = ParseRequestHeaders(credentialsRequired);
    PopulateResponseHeaders();
    if (!refusal.empty()) {
        ServiceLog::Write(ServiceLog::kRefused, STRINGUtil::FormatStr("%s", refusal.c_str()));
        return soap_senderfault(refusal.c_str(), "");
    }
    return KeepHeader(SanApi::SanApiPortBindingService::dispatch());
}

// The engine drops the header from the faults that it raises itself; it keeps it in those that a
// service raises.
int SANService::KeepHeader(int outcome) {
    error = outcome;
    if (outcome > SOAP_OK && outcome < kFirstHttpStatus) {
        soap_set_fault(this);
        error = SOAP_FAULT;
    }
    return error;
}

std::string SANService::ParseRequestHeaders(bool credentialsRequired) {
    ServiceLog::Write(ServiceLog::kValidating);
    if (header == nullptr) {
        return "Soap header not specified";
    }
    SanApi::ns1__HccApiHeader* apiHeader = header->ns1__HccApiHeader_;
    if (apiHeader == nullptr) {
        return "SanService soap header not specified";
    }
    if (apiHeader->xsdVersion != nullptr) {
        m_header.schemaVersion = apiHeader->xsdVersion->version;
    }
    if (!STRINGUtil::StartsWith(m_header.schemaVersion, kVersionPrefix)) {
        return STRINGUtil::FormatStr(
            "SanService soap header version mismatch, expecting[%s] specified[%s]",
            kFullVersion.c_str(), text::shortened(m_header.schemaVersion).c_str());
    }
    if (apiHeader->userPass != nullptr && apiHeader->userPass->__size > 0) {
        TakeCredentials(*apiHeader->userPass);
    }
    if (apiHeader->authToken != nullptr && !apiHeader->authToken->empty()) {
        m_header.authToken = *apiHeader->authToken;
    }
    if (credentialsRequired && m_header.credentials.empty() && m_header.authToken.empty()) {
        return "SanService user credentials not specified";
    }
    return "";
}

// Clients encode the credentials once more inside the element that is base64 already. The engine
// hands that inner text over without its terminating zero, and its decoder runs to the zero.
void SANService::TakeCredentials(SanApi::xsd__base64Binary& userPass) {
    const auto size = static_cast<size_t>(userPass.__size);
    std::string encoded(reinterpret_cast<const char*>(userPass.__ptr), size);
    const SecretScope cleared(encoded);
    ::explicit_bzero(userPass.__ptr, size);
    int decodedSize = userPass.__size;
    char* decoded =
        const_cast<char*>(soap_base642s(this, encoded.c_str(), nullptr, 0, &decodedSize));
    if (decoded == nullptr) {
        // No credentials then. The decoder's error is not the request's.
        error = SOAP_OK;
        return;
    }
    m_header.credentials = decoded;
    ::explicit_bzero(decoded, m_header.credentials.size());
}

void SANService::PopulateResponseHeaders() {
    if (header == nullptr || header->ns1__HccApiHeader_ == nullptr) {
        return;
    }
    SanApi::ns1__HccApiHeader& apiHeader = *header->ns1__HccApiHeader_;
    if (apiHeader.xsdVersion != nullptr) {
        apiHeader.xsdVersion->version = kFullVersion;
    }
    apiHeader.userPass = nullptr;
    if (apiHeader.authToken != nullptr) {
        clearSecret(*apiHeader.authToken);
    }
    apiHeader.authToken = nullptr;
}
