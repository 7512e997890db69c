#pragma once
// The service's answer to a request body, for the targets that judge it. The API manager is down
// for it, and the system log is thrown away.
#include <cerrno>
#include <cstdarg>
#include <cstdio>

#include "apiMgmt/common/xmlParser/xmlParser.h"
#include "apiMgmt/webservices/sanService/sanService.h"
#include "fuzz/fuzzTarget.h"
#include "tests/apiMgmt/webservices/sanService/contract/wire.h"

// These stand in front of the C library's functions of the same names.
struct sockaddr;
extern "C" {
int connect(int, const struct sockaddr*, unsigned) {
    errno = ECONNREFUSED;
    return -1;
}
void openlog(const char*, int, int) {}
void closelog() {}
void syslog(int, const char*, ...) {}
void __syslog_chk(int, int, const char*, ...) {}  // NOLINT(bugprone-reserved-identifier)
}

inline void requireOf(const std::string& reply, bool holds) {
    if (!holds) {
        std::fprintf(stderr, "the reply:\n%s\n", reply.c_str());
        std::abort();
    }
}

/// Empty, or a document that clients can read; aborts on any other.
inline std::string serviceAnswer(const std::string& request) {
    const wire::Context context(soap_new1(SOAP_C_UTFSTRING));
    SANService service(*context, "127.0.0.1", 1);
    std::string reply = wire::answer(service, request, [&] {
        service.serve();
        service.destroy();
    });
    reply.erase(0, reply.find("<SOAP-ENV:Envelope"));
    requireOf(reply, reply.empty() || parser::XMLParser(nullptr).ParseXMLString(reply));
    return reply;
}
