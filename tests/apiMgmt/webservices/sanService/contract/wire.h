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

// The bytes of a sample: without the line breaks and indentation that make it readable.
std::string sample(const std::string& name);

// The bytes that were written, without the line breaks behind the declaration and the envelope.
std::string joined(const std::string& text);

// A message written without an envelope, without its declaration and namespaces.
std::string bare(const std::string& text);

// Reads one envelope whose body holds the given message and writes it again, with the header that
// was read; gives what was written or "error N".
template <typename Message>
std::string rewriteEnvelope(soap* context, const char* tag, const std::string& text) {
    Message message;
    message.soap_default(context);
    std::istringstream in(text);
    std::ostringstream out;
    context->is = &in;
    context->os = &out;
    if (soap_begin_recv(context) || soap_envelope_begin_in(context) || soap_recv_header(context) ||
        soap_body_begin_in(context) || !message.soap_get(context, tag, nullptr) ||
        soap_body_end_in(context) || soap_envelope_end_in(context) || soap_end_recv(context))
        return "error " + std::to_string(context->error);
    soap_serializeheader(context);
    message.soap_serialize(context);
    if (soap_begin_send(context) || soap_envelope_begin_out(context) || soap_putheader(context) ||
        soap_body_begin_out(context) || message.soap_put(context, tag, "") ||
        soap_body_end_out(context) || soap_envelope_end_out(context) || soap_end_send(context))
        return "not written";
    return joined(out.str());
}

// Reads and writes a message without an envelope; gives what was written or "error N".
template <typename Message>
std::string rewrite(soap* context, const char* tag, const std::string& text) {
    Message message;
    message.soap_default(context);
    std::istringstream in(text);
    std::ostringstream out;
    context->is = &in;
    context->os = &out;
    if (soap_begin_recv(context) || !message.soap_get(context, tag, nullptr) ||
        soap_end_recv(context)) {
        return "error " + std::to_string(context->error);
    }
    message.soap_serialize(context);
    if (soap_begin_send(context) || message.soap_put(context, tag, "") || soap_end_send(context)) {
        return "not written";
    }
    return bare(out.str());
}

}  // namespace wire
