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
    // The form of an HTTP request is not the subject; what follows it is read as the body.
    const std::string reply =
        answer("POST / HTTP/1.1\r\nContent-Type: text/xml\r\nContent-Length: " +
               std::to_string(bytes.size()) + "\r\n\r\n" + std::string(bytes));
    // The envelope's tag repeats the namespaces that the client chose for SOAP and schema, so only
    // what is inside of it is judged.
    const std::size_t start = reply.find("<SOAP-ENV:Envelope");
    if (start == std::string::npos) {
        return;
    }
    parser::XMLParser reader(nullptr);
    if (!reader.ParseXMLString("<SOAP-ENV:Envelope" + reply.substr(reply.find('>', start)))) {
        std::fprintf(stderr, "unreadable reply:\n%s\n", reply.c_str());
        std::abort();
    }
}
