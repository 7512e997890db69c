// Any bytes as the body of a request: the service answers with a document that clients can read,
// or with nothing. The API manager is down for it, and the system log is thrown away.
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

namespace {

std::string answer(const std::string& request) {
    const wire::Context context(soap_new1(SOAP_C_UTFSTRING));
    SANService service(*context, "127.0.0.1", 1);
    return wire::answer(service, request, [&] {
        service.serve();
        service.destroy();
    });
}

}  // namespace

void drive(std::string_view bytes) {
    const std::string reply = answer(std::string(bytes));
    const std::size_t start = reply.find("<SOAP-ENV:Envelope");
    if (start == std::string::npos) {
        return;
    }
    // The envelope's tag repeats the namespaces that the client chose for SOAP and schema; that it
    // stays a tag is what is judged of it.
    parser::XMLParser reader(nullptr);
    if (!reader.ParseXMLString(reply.substr(start))) {
        std::fprintf(stderr, "unreadable reply:\n%s\n", reply.c_str());
        std::abort();
    }
}
