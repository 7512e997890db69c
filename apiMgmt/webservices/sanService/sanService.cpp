#include "apiMgmt/webservices/sanService/sanService.h"

#include <google/protobuf/stubs/common.h>

#include <memory>

namespace {

// What one hostile body may cost. The body limit is the web server's too; the engine's own makes
// the plug-in safe in a server that is not configured for it.
constexpr ULONG64 kMaxBodyBytes = ULONG64{128} * 1024;
constexpr long kMaxStringBytes = 64L * 1024;
constexpr unsigned int kMaxNesting = 64;
constexpr size_t kMaxListItems = 4096;

// The engine's mode in which texts are UTF-8 in both directions, whatever the server's locale.
constexpr int kStringMode = 0x02000000;
static_assert(kStringMode == SOAP_C_UTFSTRING);

constexpr int kAllLevels = 127;
constexpr int kOldestProtobuf = 2005000;

void limitInput(soap& context) {
    // References between elements are no part of the contract; following them only lets a client
    // burn processor time.
    soap_set_imode(&context, SOAP_XML_TREE);
    context.recv_maxlength = kMaxBodyBytes;
    context.maxlength = kMaxStringBytes;
    context.maxlevel = kMaxNesting;
    context.maxoccurs = kMaxListItems - 1;  // the engine looks before it adds
}

}  // namespace

const char* gNullPointerMsg = "Invalid request parameter, NULL";

SANService::SANService(const soap& context, const std::string& apiMgrAddress, const int& apiMgrPort)
    : SanApi::SanApiPortBindingService(context),
      m_apiMgrAddress(apiMgrAddress),
      m_apiMgrPort(apiMgrPort) {
    SanApiPortBindingService_init(kStringMode, kStringMode);
    limitInput(*this);
    // The reply is written once and kept until its length is known, instead of twice, and reaches
    // the web server in one piece instead of one for each tag.
    soap_set_omode(this, SOAP_IO_STORE);
    google::protobuf::internal::VerifyVersion(GOOGLE_PROTOBUF_VERSION, kOldestProtobuf,
                                              ServiceLog::kSource);

    const soapRequestConf* configuration = getRequestConfiguration();
    const request_rec* request = configuration != nullptr ? configuration->r : nullptr;
    const conn_rec* connection = request != nullptr ? request->connection : nullptr;
    if (connection != nullptr && connection->client_ip != nullptr &&
        connection->local_ip != nullptr) {
        m_header.clientAddress = connection->client_ip;
        m_header.localAddress = connection->local_ip;
    } else {
        ServiceLog::Write(ServiceLog::kNoAddresses);
    }
    SimpleLogger::setMask(kAllLevels);
}

SanApi::SanApiPortBindingService* SANService::copy() {
    return std::make_unique<SANService>(*this, m_apiMgrAddress, m_apiMgrPort).release();
}

soapRequestConf* SANService::getRequestConfiguration() {
    return fplugin != nullptr ? static_cast<soapRequestConf*>(fplugin(this, SOAP_REQUEST_CONF_ID))
                              : nullptr;
}

std::string* SANService::AllocSoapString(const std::string& s) {
    std::string& text =
        RequireAllocated(SanApi::soap_instantiate_std__string(this, -1, nullptr, nullptr, nullptr));
    text = s;
    return &text;
}
