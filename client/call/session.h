#pragma once

#include <string>

#include "SanApiSanApiPortBindingProxy.h"
#include "apiMgmt/webservices/sanService/contract/sanContract.h"
#include "client/call/outcome.h"
#include "client/call/serviceOptions.h"

namespace client {

/// Calls to one service, each over a connection of its own. For one thread; others have sessions
/// of their own.
///
///     Session session(options);
///     SanApi::ns1__Ping request;
///     SanApi::ns1__PingResponse reply;
///     Outcome outcome = session.call(&Proxy::Ping, request, reply);
class Session {
public:
    /// Raises std::invalid_argument when a TLS file cannot be used. Does not connect yet.
    explicit Session(ServiceOptions options);
    ~Session();
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;

    /// Never raises for what a server does. What `reply` points to belongs to the session and
    /// lives until the next call.
    template <class Request, class Reply>
    Outcome call(int (Proxy::*operation)(Request*, Reply*), Request& request, Reply& reply) {
        begin();
        (m_proxy.*operation)(&request, &reply);
        return finish();
    }

    /// Gets what stands at the session's URL, which is no service then: a GET, without credentials.
    /// `body` is empty unless the outcome is done.
    Outcome fetch(std::string& body);

private:
    void fillHeader();
    void setLimits();
    void startTls();
    void standBetween();
    bool grantTime();
    void begin();
    Outcome finish();
    void showMessages() const;
    static Session& of(soap* context) { return *static_cast<Session*>(context->user); }
    static int send(soap* context, const char* octets, std::size_t count);
    static std::size_t receive(soap* context, char* octets, std::size_t size);
    static SOAP_SOCKET open(soap* context, const char* endpoint, const char* host, int port);
    static int writeHeader(soap* context, const char* name, const char* value);
    static int readHeader(soap* context, const char* name, const char* value);

    ServiceOptions m_options;
    Proxy m_proxy;
    SanApi::ns1__HccApiXsd m_version;
    SanApi::xsd__base64Binary m_userPass;
    std::string m_encodedUserPass;
    SanApi::ns1__HccApiHeader m_apiHeader;
    SOAP_ENV__Header m_header;
    double m_began = 0;
    CallFacts m_facts;
    // The engine's own functions, which the ones above hand on to.
    decltype(soap::fopen) m_open = nullptr;
    decltype(soap::fsend) m_send = nullptr;
    decltype(soap::frecv) m_receive = nullptr;
    decltype(soap::fposthdr) m_writeHeader = nullptr;
    decltype(soap::fparsehdr) m_readHeader = nullptr;
    std::string m_sent;
    std::string m_received;
};

}  // namespace client
