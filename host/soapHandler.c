/* The gate that every request passes before the plug-in sees it. */
#include "host/modGsoap.h"

#include <http_core.h>
#include <http_log.h>
#include <http_protocol.h>
#include <http_request.h>

#define SOAP_CONTENT_TYPE "text/xml; charset=utf-8"

/* A refusal with a text that says what is wrong, in place of the server's general page. */
static int refuse(request_rec* r, int status, const char* reason) {
    ap_custom_response(r, status, reason);
    return status;
}

static int refuseMethod(request_rec* r, const struct soapLocation* location) {
    ap_allow_standard_methods(r, REPLACE_ALLOW, M_POST, location->wsdl ? M_GET : -1, -1);
    return HTTP_METHOD_NOT_ALLOWED;
}

/* True when the character set named in a content type (null for none) is one that reads as
 * UTF-8: the engine is not told of any other. */
static int isUtf8(const char* parameters) {
    static const char* const known[] = {"utf-8", "us-ascii"};
    const char* value = parameters ? ap_strcasestr(parameters, "charset=") : NULL;
    if (!value) {
        return 1;
    }
    value += strlen("charset=");
    if (*value == '"') {
        ++value;
    }
    for (size_t i = 0; i < sizeof known / sizeof *known; ++i) {
        size_t length = strlen(known[i]);
        if (strncasecmp(value, known[i], length) == 0 && strcspn(value, "\"; \t") == length) {
            return 1;
        }
    }
    return 0;
}

static int isXmlText(const char* contentType) {
    const size_t length = strlen("text/xml");
    return contentType && strncasecmp(contentType, "text/xml", length) == 0 &&
           strcspn(contentType, "; \t") == length && isUtf8(strchr(contentType, ';'));
}

static int checkHeaders(request_rec* r) {
    const char* encoding = apr_table_get(r->headers_in, "Content-Encoding");
    if (!isXmlText(apr_table_get(r->headers_in, "Content-Type"))) {
        return refuse(r, HTTP_UNSUPPORTED_MEDIA_TYPE,
                      "The content type of a SOAP request is text/xml, its character set UTF-8.");
    }
    if (encoding && strcasecmp(encoding, "identity") != 0) {
        return refuse(r, HTTP_UNSUPPORTED_MEDIA_TYPE, "A SOAP request is sent without encoding.");
    }
    return OK;
}

/* The engine guesses compressed, packaged and HTTP input from its first bytes and would unpack
 * it; only text that begins as XML begins reaches it. */
static int checkStart(request_rec* r, apr_bucket_brigade* body) {
    static const char byteOrderMark[] = "\xEF\xBB\xBF";
    char start[256];
    apr_size_t size = sizeof start - 1;
    if (APR_BRIGADE_EMPTY(body)) {
        return refuse(r, HTTP_BAD_REQUEST, "The request has no body.");
    }
    if (apr_brigade_flatten(body, start, &size) != APR_SUCCESS) {
        return HTTP_BAD_REQUEST;
    }
    start[size] = '\0';
    const char* first = strncmp(start, byteOrderMark, 3) == 0 ? start + 3 : start;
    first += strspn(first, " \t\r\n");
    return *first == '<' ? OK : refuse(r, HTTP_BAD_REQUEST, "The request body is not XML.");
}

static int sendReply(request_rec* r, int status, apr_bucket_brigade* reply) {
    apr_off_t length = 0;
    apr_brigade_length(reply, 1, &length);
    r->status = status;
    ap_set_content_type(r, SOAP_CONTENT_TYPE);
    ap_set_content_length(r, length);
    /* Sent at once. The server would hold a short reply back until it has looked in vain for a
     * next request, and would then hand the connection to another thread. */
    APR_BRIGADE_INSERT_TAIL(reply, apr_bucket_flush_create(reply->bucket_alloc));
    APR_BRIGADE_INSERT_TAIL(reply, apr_bucket_eos_create(reply->bucket_alloc));
    /* A client that has gone is no failure of this module, and the server notes it itself. */
    ap_pass_brigade(r->output_filters, reply);
    return OK;
}

static int servePost(request_rec* r, struct soapLibrary* library) {
    apr_bucket_brigade* body = apr_brigade_create(r->pool, r->connection->bucket_alloc);
    int status = checkHeaders(r);
    if (status == OK) {
        status = soapReadBody(r, body);
    }
    if (status == HTTP_REQUEST_ENTITY_TOO_LARGE) {
        return refuse(r, status, "The request body is larger than the service accepts.");
    }
    if (status == OK) {
        status = checkStart(r, body);
    }
    if (status != OK) {
        return status;
    }
    apr_bucket_brigade* reply = apr_brigade_create(r->pool, r->connection->bucket_alloc);
    status = soapServe(r, library, body, reply);
    return sendReply(r, status, reply);
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
        return servePost(r, location->library);
    }
    ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, r,
                  SOAP_HANDLER " is set here, and no SOAPLibrary names a plug-in");
    return HTTP_INTERNAL_SERVER_ERROR;
}
