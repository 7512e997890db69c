// What the engine looks for outside every namespace and the generated code does not give there.
#include "apiMgmt/webservices/sanService/contract/sanContract.h"

#include <cstdlib>
#include <new>
#include <string_view>

#include "apiMgmt/common/text/legalXmlText.h"
#include "apiMgmt/common/text/safeText.h"

// The namespace table is one of the names that the plug-in exports.
#pragma GCC visibility push(default)
#include "SanApiPortBinding.nsmap"
#pragma GCC visibility pop

// The header's content is a message type; its reader and writer live with the messages. The
// generator gives the names.
// NOLINTBEGIN(bugprone-reserved-identifier)

void soap_serialize_ns1__HccApiHeaderPointer(soap* context, ns1__HccApiHeader* const* header) {
    SanApi::soap_serialize_PointerTons1__HccApiHeader(context, header);
}

int soap_out_ns1__HccApiHeaderPointer(soap* context, const char* tag, int id,
                                      ns1__HccApiHeader* const* header, const char* type) {
    return SanApi::soap_out_PointerTons1__HccApiHeader(context, tag, id, header, type);
}

ns1__HccApiHeader** soap_in_ns1__HccApiHeaderPointer(soap* context, const char* tag,
                                                     ns1__HccApiHeader** header,
                                                     const char* /*type*/) {
    return SanApi::soap_in_PointerTons1__HccApiHeader(context, tag, header, "ns1:HccApiHeader");
}
// NOLINTEND(bugprone-reserved-identifier)

// The engine fills in a fault without checking that it got memory for it. When it got none, it is
// given a fault that each thread keeps for this case and that owns nothing.
void env_fault(soap* context);
const char** env_faultcode(soap* context);
const char** env_faultsubcode(soap* context);
const char** env_faultstring(soap* context);

void soap_fault(soap* context) {
    thread_local SOAP_ENV__Fault spareFault;
    thread_local SOAP_ENV__Code spareCode;
    thread_local SOAP_ENV__Reason spareReason;
    env_fault(context);
    if (context->fault == nullptr) {
        spareFault = SOAP_ENV__Fault();
        context->fault = &spareFault;
        env_fault(context);
    }
    constexpr short kSoap12 = 2;
    if (context->version == kSoap12 && context->fault->SOAP_ENV__Code == nullptr) {
        spareCode = SOAP_ENV__Code();
        context->fault->SOAP_ENV__Code = &spareCode;
    }
    if (context->version == kSoap12 && context->fault->SOAP_ENV__Reason == nullptr) {
        spareReason = SOAP_ENV__Reason();
        context->fault->SOAP_ENV__Reason = &spareReason;
    }
}

const char** soap_faultcode(soap* context) {
    soap_fault(context);
    return env_faultcode(context);
}

const char** soap_faultsubcode(soap* context) {
    soap_fault(context);
    return env_faultsubcode(context);
}

const char** soap_faultstring(soap* context) {
    soap_fault(context);
    return env_faultstring(context);
}

// The engine's faults quote what the client sent: a tag, an attribute's value. Bytes that no
// document may hold would make the whole reply unreadable, so they are dropped on the way out. The
// texts that the engine makes itself stand in the context's message room, and are cut.
void env_serializefault(soap* context);

void soap_serializefault(soap* context) {
    const char** text = soap_faultstring(context);
    if (text != nullptr && *text != nullptr) {
        try {
            const std::string legal = text::legalXmlText(*text);
            *text = soap_strdup(
                context, *text == context->msgbuf ? text::shortened(legal).c_str() : legal.c_str());
        } catch (const std::bad_alloc&) {
            *text = nullptr;  // a fault without a text
        }
    }
    env_serializefault(context);
}

// Drops the name that the client gave the row's namespace, if it is neither.
bool dropOther(Namespace& row, std::string_view soap11, std::string_view soap12) {
    if (row.out == nullptr || row.out == soap11 || row.out == soap12) {
        return false;
    }
    std::free(row.out);
    row.out = nullptr;
    return true;
}

// The engine knows SOAP 1.1 and 1.2 of today, and for the other envelopes of the W3C, which were
// drafts of 1.2, no version: then it would take the body's element for the message, and the reply
// would repeat the draft's names, of which a part is free. Says whether the envelope is of one.
bool dropDraft(soap* context) {
    Namespace* rows = context->local_namespaces;
    if (rows == nullptr) {
        return false;
    }
    dropOther(rows[1], "http://schemas.xmlsoap.org/soap/encoding/",
              "http://www.w3.org/2003/05/soap-encoding");
    return dropOther(rows[0], "http://schemas.xmlsoap.org/soap/envelope/",
                     "http://www.w3.org/2003/05/soap-envelope");
}

int env_getheader(soap* context);

int soap_getheader(soap* context) {
    constexpr short kSoap12 = 2;
    if (dropDraft(context)) {
        soap_set_version(context, kSoap12);
    }
    return env_getheader(context);
}

// The reply's first tag repeats the names that the client gave the schema's namespaces, of which a
// part is free: control characters in it would make the reply unreadable.
void env_serializeheader(soap* context);

void soap_serializeheader(soap* context) {
    const auto isLegal = [](const char* name) {
        try {
            return text::legalXmlText(name) == name;
        } catch (const std::bad_alloc&) {
            return false;  // the schema's usual name does as well
        }
    };
    dropDraft(context);                            // which was not read as far as the header
    constexpr std::size_t kNamedByTheVersion = 2;  // rows: the envelope, the encoding
    Namespace* row = context->local_namespaces;
    for (row += row != nullptr ? kNamedByTheVersion : 0; row != nullptr && row->id != nullptr;
         ++row) {
        if (row->out != nullptr && !isLegal(row->out)) {
            std::free(row->out);
            row->out = nullptr;
        }
    }
    env_serializeheader(context);
}

// Stands in for std::nothrow where the engine's archive is linked into a plug-in.
extern "C" const std::nothrow_t sanNoThrow{};

// The engine calls these by their C names for elements whose type it learns at run time.

extern "C" {

void soap_markelement(soap* context, const void* data, int type) {
    SanApi::soap_markelement(context, data, type);
}

int soap_putelement(soap* context, const void* data, const char* tag, int id, int type) {
    return SanApi::soap_putelement(context, data, tag, id, type);
}

void* soap_getelement(soap* context, const char* tag, int* type) {
    return SanApi::soap_getelement(context, tag, type);
}

void* soap_dupelement(soap* context, const void* data, int type) {
    return SanApi::soap_dupelement(context, data, type);
}

void soap_delelement(const void* data, int type) {
    SanApi::soap_delelement(data, type);
}

}  // extern "C"
