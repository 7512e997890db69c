/* The gate that every request passes before the plug-in sees it. */
#include "host/modGsoap.h"

#include <http_core.h>
#include <http_log.h>
#include <http_protocol.h>
#include <http_request.h>

/* The media types of a request and of its reply, by the version of its envelope. */
#define SOAP_11_TYPE "text/xml"
#define SOAP_12_TYPE "application/soap+xml"
#define UTF_8 "; charset=utf-8"

/* What a client is told when all places are taken. A call takes milliseconds while the array
 * answers, so a second is enough. */
#define SECONDS_TO_RETRY "1"

static void countRefusal(request_rec* r, enum SoapRefusal why) {
    const struct soapLocation* location = ap_get_module_config(r->per_dir_config, &gsoap_module);
    if (location->service && location->service->counts) {
        soapAdd(&location->service->counts->refused[why], 1);
    }
    soapNoteRefusal(r, why);
}

/* A refusal that says in plain text what is wrong, in place of the server's general page. */
static int refuse(request_rec* r, int status, enum SoapRefusal why, const char* reason) {
    countRefusal(r, why);
    r->status = status;
    ap_set_content_type(r, "text/plain" UTF_8);
    ap_rprintf(r, "%s\n", reason);
    return OK;
}

static int refuseMethod(request_rec* r, const struct soapLocation* location) {
    apr_table_setn(r->headers_out, "Allow", location->wsdl ? "GET, HEAD, POST" : "POST");
    return refuse(r, HTTP_METHOD_NOT_ALLOWED, kSoapMethod,
                  location->wsdl ? "A request is sent with POST; GET with ?wsdl describes them."
                                 : "A request is sent with POST.");
}

static const char* skipBlanks(const char* text) {
    return text + strspn(text, " \t");
}

/* The length of `text` up to its end or one of `stops`, when it is `word` in any case; else 0. */
static size_t matchWord(const char* text, const char* word, const char* stops) {
    const size_t length = strlen(word);
    return strncasecmp(text, word, length) == 0 && strcspn(text, stops) == length ? length : 0;
}

/* Copies the value of a parameter without its quotes, which are double ones with the backslash
 * before any character, as HTTP has it, or single ones, as some clients have it. Gives what follows
 * the value. */
static const char* readValue(const char* text, char* value, size_t room) {
    char quote = '\0';
    if (*text == '"' || *text == '\'') {
        quote = *text++;
    }
    while (*text && (quote ? *text != quote : !strchr("; \t", *text))) {
        text += quote == '"' && *text == '\\' && text[1] ? 1 : 0;
        if (room > 1) {
            *value++ = *text;
            --room;
        }
        ++text;
    }
    *value = '\0';
    return text + (quote && *text ? 1 : 0);
}

static int isKnownCharacterSet(const char* name) {
    return strcasecmp(name, "utf-8") == 0 || strcasecmp(name, "utf8") == 0 ||
           strcasecmp(name, "us-ascii") == 0;
}

/* True when the parameters of a content type name no character set, or one that reads as UTF-8:
 * the engine is not told of any other. */
static int isUtf8(const char* parameters) {
    char value[32];
    while (*(parameters += strspn(parameters, "; \t"))) {
        const int tellsSet = matchWord(parameters, "charset", "= \t;") > 0;
        parameters = skipBlanks(parameters + strcspn(parameters, "= \t;"));
        if (*parameters == '=') {
            parameters = readValue(skipBlanks(parameters + 1), value, sizeof value);
            if (tellsSet && !isKnownCharacterSet(value)) {
                return 0;
            }
        }
    }
    return 1;
}

static int isSoapType(const char* contentType) {
    static const char* const known[] = {SOAP_11_TYPE, SOAP_12_TYPE};
    for (size_t i = 0; contentType && i < sizeof known / sizeof *known; ++i) {
        const size_t length = matchWord(contentType, known[i], "; \t");
        if (length > 0) {
            return isUtf8(contentType + length);
        }
    }
    return 0;
}

/* False when the request is refused, `status` then being what the handler gives. */
static int passesHeaders(request_rec* r, int* status) {
    const char* encoding = apr_table_get(r->headers_in, "Content-Encoding");
    if (!isSoapType(apr_table_get(r->headers_in, "Content-Type"))) {
        *status = refuse(r, HTTP_UNSUPPORTED_MEDIA_TYPE, kSoapMediaType,
                         "The content type of a SOAP request is " SOAP_11_TYPE " or " SOAP_12_TYPE
                         ", its character set UTF-8.");
        return 0;
    }
    if (encoding && strcasecmp(encoding, "identity") != 0) {
        *status = refuse(r, HTTP_UNSUPPORTED_MEDIA_TYPE, kSoapMediaType,
                         "A SOAP request is sent unencoded.");
        return 0;
    }
    return 1;
}

/* The engine guesses compressed, packaged and HTTP input from its first bytes and would unpack
 * it; only text that begins as XML begins reaches it. */
static const char* refusedStart(apr_bucket_brigade* body) {
    static const char byteOrderMark[] = "\xEF\xBB\xBF";
    char start[256];
    apr_size_t size = sizeof start - 1;
    if (APR_BRIGADE_EMPTY(body)) {
        return "The request has no body.";
    }
    if (apr_brigade_flatten(body, start, &size) != APR_SUCCESS) {
        return "The request body cannot be read.";
    }
    start[size] = '\0';
    const char* first = strncmp(start, byteOrderMark, 3) == 0 ? start + 3 : start;
    first += strspn(first, " \t\r\n");
    return *first == '<' ? NULL : "The request body is not XML.";
}

/* False when the request is refused, as for the headers. */
static int passesBody(request_rec* r, apr_bucket_brigade* body, int* status) {
    const char* reason = NULL;
    *status = soapReadBody(r, body, &reason);
    if (*status == HTTP_REQUEST_ENTITY_TOO_LARGE) {
        *status =
            refuse(r, *status, kSoapSize, "The request body is larger than the service accepts.");
    } else if (reason) {
        *status = refuse(r, HTTP_BAD_REQUEST, kSoapHostile, reason);
    } else if (*status != OK) {
        countRefusal(r, kSoapBroken);
    } else if ((reason = refusedStart(body))) {
        *status = refuse(r, HTTP_BAD_REQUEST, kSoapNoXml, reason);
    } else {
        return 1;
    }
    return 0;
}

/* All places are taken. The client gets the same words whether that is noticed before its body is
 * read or after. */
static int refuseBusy(request_rec* r) {
    apr_table_setn(r->headers_out, "Retry-After", SECONDS_TO_RETRY);
    return refuse(r, HTTP_SERVICE_UNAVAILABLE, kSoapBusy,
                  "The service has as many calls at work as it may.");
}

static int sendReply(request_rec* r, int status, apr_bucket_brigade* reply, const char* type) {
    apr_off_t length = 0;
    apr_brigade_length(reply, 1, &length);
    r->status = status;
    ap_set_content_type(r, type);
    ap_set_content_length(r, length);
    /* Sent at once. The server would hold a short reply back until it has looked in vain for a
     * next request, and would then hand the connection to another thread. */
    APR_BRIGADE_INSERT_TAIL(reply, apr_bucket_flush_create(reply->bucket_alloc));
    APR_BRIGADE_INSERT_TAIL(reply, apr_bucket_eos_create(reply->bucket_alloc));
    /* A client that has gone is no failure of this module, and the server notes it itself. */
    ap_pass_brigade(r->output_filters, reply);
    return OK;
}

static int servePost(request_rec* r, const struct soapLocation* location) {
    struct soapServiceCounts* counts = location->service->counts;
    const unsigned limit = location->maxCalls > 0 ? (unsigned)location->maxCalls : 0;
    struct soapCall call;
    int status;
    int isSoap12 = 0;
    /* When the service is full already, the client is told at once. A place is taken only after the
     * body was read, so that slow clients take none. */
    if (soapIsFull(counts, limit)) {
        return refuseBusy(r);
    }
    apr_bucket_brigade* body = apr_brigade_create(r->pool, r->connection->bucket_alloc);
    if (!passesHeaders(r, &status) || !passesBody(r, body, &status)) {
        return status;
    }
    if (!soapBeginCall(&call, counts, limit)) {
        return refuseBusy(r);
    }
    apr_bucket_brigade* reply = apr_brigade_create(r->pool, r->connection->bucket_alloc);
    status = soapServe(r, location->library, &call, body, reply, &isSoap12);
    soapNoteCall(r, &call);
    return sendReply(r, status, reply, isSoap12 ? SOAP_12_TYPE UTF_8 : SOAP_11_TYPE UTF_8);
}

static int asksForWsdl(const request_rec* r) {
    return r->method_number == M_GET && r->args && strcasecmp(r->args, "wsdl") == 0;
}

int soapHandler(request_rec* r) {
    if (!r->handler || strcmp(r->handler, SOAP_HANDLER) != 0) {
        return DECLINED;
    }
    const struct soapLocation* location = ap_get_module_config(r->per_dir_config, &gsoap_module);
    if (location->wsdl && asksForWsdl(r)) {
        return soapSendWsdl(r, location->wsdl);
    }
    if (r->method_number != M_POST) {
        return refuseMethod(r, location);
    }
    if (location->library) {
        return servePost(r, location);
    }
    ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, r,
                  SOAP_HANDLER " is set here, and no SOAPLibrary names a plug-in");
    return HTTP_INTERNAL_SERVER_ERROR;
}
