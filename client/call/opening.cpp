#include "client/call/opening.h"

#include <openssl/ssl.h>

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <thread>
#include <utility>

namespace client {

namespace {

void moveConnection(soap& from, soap& to) {
    constexpr soap_mode kOverTls = SOAP_ENC_SSL;
    to.socket = std::exchange(from.socket, SOAP_INVALID_SOCKET);
    to.imode |= from.imode & kOverTls;
    to.omode |= from.omode & kOverTls;
    std::swap(to.ssl, from.ssl);
    std::swap(to.bio, from.bio);
    // What a later greeting is shortened with.
    std::swap(to.session, from.session);
    std::swap(to.session_host, from.session_host);
    std::swap(to.session_port, from.session_port);
}

/// The engine looks a name up for as long as the system likes, which nothing can end, and gives
/// each address and each silence its time anew. So it does that on a context that may be
/// left to itself.
class Opening {
public:
    Opening(soap& context, const char* endpoint, const char* host, int port)
        : m_context(soap_copy(&context)), m_endpoint(endpoint), m_host(host), m_port(port) {
        moveConnection(context, *m_context);
        if (m_context->ctx != nullptr) {
            SSL_CTX_up_ref(m_context->ctx);  // The original may end before.
        }
    }
    ~Opening() {
        soap_closesock(m_context.get());
        SSL_CTX_free(m_context->ctx);
    }
    Opening(const Opening&) = delete;
    Opening& operator=(const Opening&) = delete;

    void run(decltype(soap::fopen) open) {
        m_context->socket = open(m_context.get(), m_endpoint.c_str(), m_host.c_str(), m_port);
        m_isOver.set_value();
    }

    std::future<void> isOver() { return m_isOver.get_future(); }

    SOAP_SOCKET handOver(soap& context) {
        moveConnection(*m_context, context);
        if (m_context->error != SOAP_OK) {
            soap_set_fault(m_context.get());
            const auto copied = [&](const char* text) {
                return text == nullptr ? nullptr : soap_strdup(&context, text);
            };
            soap_set_receiver_error(&context, copied(soap_fault_string(m_context.get())),
                                    copied(soap_fault_detail(m_context.get())), m_context->error);
        }
        return context.socket;
    }

private:
    struct End {
        void operator()(soap* context) const {
            soap_destroy(context);
            soap_end(context);
            soap_free(context);
        }
    };
    std::unique_ptr<soap, End> m_context;
    std::string m_endpoint;
    std::string m_host;
    int m_port;
    std::promise<void> m_isOver;
};

}  // namespace

SOAP_SOCKET openWithin(soap& context, decltype(soap::fopen) open, const char* endpoint,
                       const char* host, int port, double seconds) {
    const auto opening = std::make_shared<Opening>(context, endpoint, host, port);
    std::thread opener([opening, open] { opening->run(open); });
    if (opening->isOver().wait_for(std::chrono::duration<double>(seconds)) ==
        std::future_status::ready) {
        opener.join();
        return opening->handOver(context);
    }
    opener.detach();
    soap_set_receiver_error(&context, "Timeout", "no connection in time", SOAP_TCP_ERROR);
    return SOAP_INVALID_SOCKET;
}

}  // namespace client
