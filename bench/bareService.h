#pragma once
// What a Ping costs without the service: the same messages on the same engine, answered without
// a call of the management API. Compiled with BARE_EXCHANGE it also makes one bare exchange with
// a local peer, of the sizes that the environment gives, as a floor for what any service that
// asks an API manager has to spend; with BARE_LOG it writes the log lines of a request. Included by
// the one source of each program.
#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <syslog.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <vector>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"

namespace bare {

inline int numberFromEnvironment(const char* name) {
    const char* text = std::getenv(name);
    return text != nullptr ? std::atoi(text) : 0;
}

/// One frame of the IPC, its length in front, with a content that nobody reads.
inline std::vector<char> makeFrame(size_t size) {
    std::vector<char> frame(size, 'x');
    const uint32_t length = htonl(static_cast<uint32_t>(size - sizeof length));
    std::memcpy(frame.data(), &length, sizeof length);
    return frame;
}

/// What the benchmark says about the exchange.
struct Exchange {
    int port = numberFromEnvironment("BENCH_PEER_PORT");
    std::vector<char> request = makeFrame(numberFromEnvironment("BENCH_REQUEST_BYTES"));
    std::vector<char> reply = std::vector<char>(numberFromEnvironment("BENCH_REPLY_BYTES"));
};

[[maybe_unused]] inline bool exchangeOnce() {
    static const Exchange exchange;
    thread_local std::vector<char> reply = exchange.reply;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = htons(static_cast<uint16_t>(exchange.port));
    const int peer = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const auto size = static_cast<ssize_t>(exchange.request.size());
    bool done =
        ::connect(peer, reinterpret_cast<sockaddr*>(&address), sizeof address) == 0 &&
        ::send(peer, exchange.request.data(), exchange.request.size(), MSG_NOSIGNAL) == size;
    size_t received = 0;
    while (done && received < reply.size()) {
        const ssize_t got = ::recv(peer, reply.data() + received, reply.size() - received, 0);
        done = got > 0;
        received += done ? static_cast<size_t>(got) : 0;
    }
    ::close(peer);
    return done;
}

/// Leaves every operation unserved.
class NoService : public SanApi::SanApiPortBindingService {
public:
    using SanApiPortBindingService::SanApiPortBindingService;

#define UNSERVED(name)                                                        \
    int name(SanApi::ns1__##name*, SanApi::ns1__##name##Response*) override { \
        return SOAP_NO_METHOD;                                                \
    }
    SAN_API_OPERATIONS(UNSERVED)
#undef UNSERVED
};

class BareService : public NoService {
public:
    explicit BareService(const struct soap& context) : NoService(context) {
        SanApiPortBindingService_init(SOAP_C_UTFSTRING, SOAP_C_UTFSTRING);
    }

    SanApiPortBindingService* copy() override { return new BareService(*this); }

    int Ping(SanApi::ns1__Ping*, SanApi::ns1__PingResponse* response) override {
#ifdef BARE_LOG
        openlog("SANService", LOG_CONS, LOG_USER);
        syslog(LOG_WARNING, "%s", "level(4) category(SANService) message(Validating soap header)");
        syslog(LOG_WARNING, "%s", "level(4) category(SANService) message(Serving Ping request)");
#endif
#ifdef BARE_EXCHANGE
        if (!exchangeOnce()) {
            return soap_receiverfault("The exchange failed", "");
        }
#endif
#ifdef BARE_LOG
        closelog();
#endif
        response->return_ = SanApi::soap_new_ns1__resultObject(this);
        response->return_->defaultMsg = SanApi::soap_new_std__string(this);
        return SOAP_OK;
    }
};

}  // namespace bare
