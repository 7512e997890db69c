#pragma once

#include <map>
#include <new>
#include <string>

#include "apiMgmt/apiStub/base/apiObjects/base/apiHccReqHeader.h"
#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "apiMgmt/webservices/sanService/requestScan.h"
#include "apiMgmt/webservices/sanService/serviceLog.h"
#include "host/include/soapRequestConf.h"
#include "host/include/soapRequestReport.h"

class BASEApiMethod;
class BASEApiMethodReturn;

/// Fault text for a request or response object that is not there. Exported.
extern "C" __attribute__((visibility("default"))) const char* gNullPointerMsg;

/// Serves one SOAP request.
///
/// The handler makes one on its stack from the module's context, serves with it and destroys
/// it. The object holds a whole engine context (about 160 KiB), so the web server's threads need
/// stacks for it. What a response carries is allocated on that context and freed by it.
///
///     SANService service(*context, "127.0.0.1", getApiMgrPort());
///     return service.serve();
///
/// Its members are defined in
/// - sanService.cpp: construction, the limits of the input, what is allocated on the context
/// - sanServiceHeader.cpp: the SOAP header of request and reply, and the dispatch behind it
/// - sanServiceExecution.cpp: the call of the management API, and what becomes of its return
/// - sanServiceMembership.cpp: the operations on clusters and their servers, and Ping
/// - sanServiceVolumes.cpp: the operations on volumes and their data
class SANService : public SanApi::SanApiPortBindingService {
public:
    /// Copies @p context, so that the object inherits the module's connection, buffers and modes.
    /// The two connection addresses come from the module's request configuration; without it
    /// they stay empty and a LOGError line says so.
    /// @p apiMgrAddress and @p apiMgrPort are kept for copy() alone: a call to the management API
    /// finds its way by itself, always to 127.0.0.1 and the port of getApiMgrPort().
    SANService(const soap& context, const std::string& apiMgrAddress, const int& apiMgrPort);
    /// Clears the secrets of the request.
    ~SANService() override;
    SANService(const SANService&) = delete;
    SANService& operator=(const SANService&) = delete;

    /// A fresh object from this one's context, with an empty request header. The caller owns it.
    SanApi::SanApiPortBindingService* copy() override;

    /// Checks the SOAP header, prepares the reply's, and calls the operation that the body names.
    /// @return SOAP_OK or an engine error code. No exception leaves it.
    int dispatch() override;

    // One for each operation of the contract; see sanServiceMembership.cpp and
    // sanServiceVolumes.cpp.
#define SAN_SERVE(Name) \
    int Name(SanApi::ns1__##Name* request, SanApi::ns1__##Name##Response* response) override;
    SAN_API_OPERATIONS(SAN_SERVE)
#undef SAN_SERVE

    /// The identity that accompanies every call of this request to the management API.
    const APIHccReqHeader& GetRequestHeader() const {
        return m_header;
    }

protected:
    /// The module's record of this request, null when it registered none. Not owned.
    soapRequestConf* getRequestConfiguration();

    /// Validates the SOAP header and takes over what it carries.
    /// @return the fault text, empty when the header passes.
    std::string ParseRequestHeaders(bool credentialsRequired);

    /// Rewrites the request's header for the reply: our version, no credentials, no token.
    void PopulateResponseHeaders();

    /// A copy of @p s that the context owns.
    std::string* AllocSoapString(const std::string& s);

    /// A result object with its defaults, owned by the context.
    SanApi::ns1__resultObject* AllocSoapResultObject();

    /// Runs one method of the management API.
    /// @param args blobs that travel with it, or null. @return the method's return, owned by the
    /// caller, or null after a failure that is then in the log.
    const BASEApiMethodReturn* ExecuteMethod(const BASEApiMethod& method,
                                             const std::map<std::string, std::string>* args) const;

    /// Turns a method's return into a result object or a fault.
    /// @return SOAP_OK with *result set, or the fault's code with *result as it was.
    int ParseXMLResponse(SanApi::ns1__resultObject** result, const BASEApiMethodReturn* ret);

private:
    /// What the engine allocated. It gives null when memory has run out, which is thrown here.
    template <typename Object>
    static Object& RequireAllocated(Object* object) {
        if (object == nullptr) {
            throw std::bad_alloc();
        }
        return *object;
    }

    /// The engine's way to more input: what the host gives, looked at.
    static size_t ReceiveChecked(soap* context, char* target, size_t room);
    /// Whether a fault can be written: the engine asks for it before, and needs memory for it.
    static int PollForFault(soap* context);
    /// Where the engine makes a fault: says why the input was refused.
    static void NameRefusal(soap* context, const char** code, const char** text);

    int DispatchChecked();
    void ReportLostLines();
    static void LogEscaped(const char* reason) noexcept;
    int KeepHeader(int outcome);
    void TakeCredentials(SanApi::xsd__base64Binary& userPass);
    SanApi::ns1__scsiInfo* AllocScsiInfo(const std::string& deviceId, const std::string& serial);

    /// What every operation does first: its log line, the check of its parameters, the cluster
    /// that it speaks for. Then serve() does what this operation alone does.
    template <typename Request, typename Response, typename Serve>
    int ServeOperation(const ServiceLog::FixedEntry& entry, const Request* request,
                       const Response* response, Serve&& serve) {
        ServiceLog::Write(entry);
        if (m_report != nullptr) {
            m_report->operation(entry.function);
            ReportLostLines();
        }
        if (request == nullptr || response == nullptr) {
            return soap_senderfault(gNullPointerMsg, "");
        }
        if constexpr (requires { request->hccId; }) {
            m_header.hccId = request->hccId;
        }
        return serve();
    }

    /// What every operation does last: run the method, map its return, drop it.
    int RunMethod(const BASEApiMethod& method, SanApi::ns1__resultObject** result,
                  const std::map<std::string, std::string>* args = nullptr);

    size_t (*m_receive)(soap*, char*, size_t);  // the host's, as is the next
    int (*m_poll)(soap*);
    RequestScan m_scan;
    bool m_dispatching = false;  // operations are called for a request, and not by a program
    // Where the module is told about the request; null in a module that does not want to know.
    const soapRequestReport* m_report = nullptr;
    APIHccReqHeader m_header;
    std::string m_apiMgrAddress;
    int m_apiMgrPort;
};
