#include "apiMgmt/webservices/sanService/sanService.h"

#include <google/protobuf/stubs/common.h>

#include <algorithm>
#include <cstring>
#include <memory>

#include "apiMgmt/common/utils/secretText.h"

namespace {

// What one hostile body may cost. RequestScan holds the limits that the engine does not hold, or
// not exactly: it measures its input by whole buffers, and known elements only.
constexpr long kMaxStringBytes = 64L * 1024;
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
    context.recv_maxlength = RequestScan::kMaxBytes;
    context.maxlength = kMaxStringBytes;
    context.maxlevel = kSoapMaxLevels;
    context.maxoccurs = kMaxListItems - 1;  // the engine looks before it adds
}

}  // namespace

const char* gNullPointerMsg = "Invalid request parameter, NULL";

SANService::SANService(const soap& context, const std::string& apiMgrAddress, const int& apiMgrPort)
    : SanApi::SanApiPortBindingService(context),
      // A copy of a service object reads where the object itself does.
      m_receive(context.frecv == &ReceiveChecked ? static_cast<const SANService&>(context).m_receive
                                                 : context.frecv),
      m_poll(context.fpoll == &PollForFault ? static_cast<const SANService&>(context).m_poll
                                            : context.fpoll),
      m_apiMgrAddress(apiMgrAddress),
      m_apiMgrPort(apiMgrPort) {
    // When memory ran out, the copy is a bare context, which would read standard input and write
    // standard output.
    if (state != SOAP_COPY) {
        throw std::bad_alloc();
    }
    SanApiPortBindingService_init(kStringMode, kStringMode);
    limitInput(*this);
    frecv = &ReceiveChecked;
    fseterror = &NameRefusal;
    fpoll = &PollForFault;
    // The reply is written once and kept until its length is known, instead of twice, and reaches
    // the web server in one piece instead of one for each tag.
    soap_set_omode(this, SOAP_IO_STORE);
    google::protobuf::internal::VerifyVersion(GOOGLE_PROTOBUF_VERSION, kOldestProtobuf,
                                              ServiceLog::kSource);

    if (fplugin != nullptr) {
        m_report = static_cast<const soapRequestReport*>(fplugin(this, SOAP_REQUEST_REPORT_ID));
    }
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

SANService::~SANService() {
    clearSecret(m_header.credentials);
    clearSecret(m_header.authToken);
    ::explicit_bzero(buf, std::min(sizeof(buf), m_scan.size()));  // what the engine has read
}

size_t SANService::ReceiveChecked(soap* context, char* target, size_t room) {
    auto& service = static_cast<SANService&>(*context);
    // One byte beyond the limit shows that there is more.
    const size_t wanted = std::min(room, RequestScan::kMaxBytes + 1 - service.m_scan.size());
    const size_t got = wanted != 0 ? service.m_receive(context, target, wanted) : 0;
    return service.m_scan.add({target, got}) == nullptr ? got : 0;
}

int SANService::PollForFault(soap* context) {
    // When the engine writes a fault it relies on its buffer for labels. It does so even after it
    // failed to allocate that buffer, because it noted the size all the same.
    if (context->labbuf == nullptr) {
        context->lablen = 0;
        context->labidx = 0;
        if (soap_append_lab(context, "", 1) != SOAP_OK) {
            return SOAP_EOF;
        }
    }
    const auto poll = static_cast<const SANService&>(*context).m_poll;
    return poll != nullptr ? poll(context) : SOAP_OK;
}

void SANService::NameRefusal(soap* context, const char** code, const char** text) {
    constexpr short kSoap11 = 1;
    if (context->version == 0) {
        soap_set_version(context, kSoap11);  // a fault is SOAP, whatever the request was
    }
    const char* refusal = static_cast<const SANService&>(*context).m_scan.refusal();
    if (refusal != nullptr && *text == nullptr) {
        *code = context->version == kSoap11 ? "SOAP-ENV:Client" : "SOAP-ENV:Sender";
        *text = refusal;
    }
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
