#pragma once
// Reading and writing of messages on a context without a connection, for the tests of this folder.
#include <memory>
#include <sstream>
#include <string>

#include "apiMgmt/webservices/sanService/contract/sanContract.h"

namespace wire {

struct Release {
    void operator()(soap* context) const {
        soap_destroy(context);
        soap_end(context);
        soap_free(context);
    }
};
using Context = std::unique_ptr<soap, Release>;

inline Context newContext(soap_mode extra = 0) {
    return Context(soap_new1(SOAP_C_UTFSTRING | SOAP_XML_TREE | extra));
}

// A request with the given body.
inline std::string envelope(const std::string& body, const std::string& header = "",
                            const char* uri = "http://schemas.xmlsoap.org/soap/envelope/") {
    return std::string("<e:Envelope xmlns:e=\"") + uri + "\" xmlns:s=\"urn:san-api:service\" " +
           "xmlns:xsi=\"http://www.w3.org/2001/XMLSchema-instance\">" + header + "<e:Body>" + body +
           "</e:Body></e:Envelope>";
}

// What a call writes on a context that it reads the text from.
template <typename Call>
std::string answer(soap& context, const std::string& text, Call call) {
    std::istringstream in(text);
    std::ostringstream out;
    context.is = &in;
    context.os = &out;
    call();
    context.is = nullptr;
    context.os = nullptr;
    return out.str();
}

// The bytes that were written, without the line breaks behind the declaration and the envelope.
inline std::string joined(std::string text) {
    std::erase_if(text, [](char each) { return each == '\n' || each == '\r'; });
    return text;
}

// Reads one envelope whose body holds the given message and writes it again, with the header that
// was read; gives what was written or "error N".
template <typename Message>
std::string rewrite(soap* context, const char* tag, const std::string& text) {
    const std::string written = answer(*context, text, [&] {
        Message message;
        message.soap_default(context);
        if (soap_begin_recv(context) || soap_envelope_begin_in(context) ||
            soap_recv_header(context) || soap_body_begin_in(context) ||
            !message.soap_get(context, tag, nullptr) || soap_body_end_in(context) ||
            soap_envelope_end_in(context) || soap_end_recv(context)) {
            return;
        }
        soap_serializeheader(context);
        message.soap_serialize(context);
        if (!soap_begin_send(context) && !soap_envelope_begin_out(context) &&
            !soap_putheader(context) && !soap_body_begin_out(context) &&
            !message.soap_put(context, tag, "") && !soap_body_end_out(context) &&
            !soap_envelope_end_out(context)) {
            soap_end_send(context);
        }
    });
    return context->error ? "error " + std::to_string(context->error) : joined(written);
}

}  // namespace wire
