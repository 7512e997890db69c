/* The service description: read when the server starts, its address filled in when asked for. */
#include "host/modGsoap.h"

#include <apr_file_io.h>
#include <apr_strings.h>
#include <http_core.h>
#include <http_protocol.h>
#include <util_xml.h>

#define ADDRESS_PLACEHOLDER "@SERVICE_ADDRESS@"
#define WSDL_SIZE_LIMIT 4194304

const char* soapReadFile(const char* path, char** text, apr_pool_t* pool) {
    apr_file_t* file;
    apr_finfo_t info;
    apr_status_t status = apr_file_open(&file, path, APR_FOPEN_READ, APR_FPROT_OS_DEFAULT, pool);
    if (status != APR_SUCCESS) {
        return apr_psprintf(pool, "cannot open %s: %pm", path, (void*)&status);
    }
    status = apr_file_info_get(&info, APR_FINFO_SIZE, file);
    if (status == APR_SUCCESS && info.size > WSDL_SIZE_LIMIT) {
        return apr_psprintf(pool, "%s is too large", path);
    }
    if (status == APR_SUCCESS) {
        *text = apr_pcalloc(pool, (apr_size_t)info.size + 1);
        status = apr_file_read_full(file, *text, (apr_size_t)info.size, NULL);
    }
    apr_file_close(file);
    return status == APR_SUCCESS ? NULL
                                 : apr_psprintf(pool, "cannot read %s: %pm", path, (void*)&status);
}

const char* soapReadWsdl(struct soapWsdl** wsdl, const char* path, apr_pool_t* pool) {
    char* text = NULL;
    const char* error = soapReadFile(path, &text, pool);
    if (error) {
        return error;
    }
    *wsdl = apr_pcalloc(pool, sizeof **wsdl);
    (*wsdl)->texts = apr_array_make(pool, 2, sizeof(const char*));
    for (char* next = text; next; text = next) {
        next = strstr(text, ADDRESS_PLACEHOLDER);
        if (next) {
            *next = '\0';
            next += strlen(ADDRESS_PLACEHOLDER);
        }
        APR_ARRAY_PUSH((*wsdl)->texts, const char*) = text;
    }
    return NULL;
}

/* An IPv6 address stands in brackets in a URL. */
static const char* hostInUrl(request_rec* r, const char* host) {
    return strchr(host, ':') ? apr_pstrcat(r->pool, "[", host, "]", NULL) : host;
}

/* The address by which the client came: the host and port that its request names, else those of
 * the connection. All of it comes from the client, so it is escaped for a URL and for XML. */
static const char* serviceAddress(request_rec* r) {
    const char* scheme = ap_http_scheme(r);
    const char* host = r->hostname ? r->hostname : r->connection->local_ip;
    apr_port_t port = r->connection->local_addr->port;
    if (r->hostname) {
        port = r->parsed_uri.port_str ? r->parsed_uri.port : apr_uri_port_of_scheme(scheme);
    }
    const char* path = ap_os_escape_path(r->pool, r->uri, 1);
    const char* url =
        port == apr_uri_port_of_scheme(scheme)
            ? apr_pstrcat(r->pool, scheme, "://", hostInUrl(r, host), path, NULL)
            : apr_psprintf(r->pool, "%s://%s:%u%s", scheme, hostInUrl(r, host), port, path);
    return ap_escape_html(r->pool, url);
}

static void appendText(apr_bucket_brigade* target, const char* text) {
    /* The texts outlive the request, so nothing is copied. */
    apr_bucket* bucket = apr_bucket_immortal_create(text, strlen(text), target->bucket_alloc);
    APR_BRIGADE_INSERT_TAIL(target, bucket);
}

int soapSendWsdl(request_rec* r, const struct soapWsdl* wsdl) {
    apr_bucket_brigade* reply = apr_brigade_create(r->pool, r->connection->bucket_alloc);
    const char* address = serviceAddress(r);
    apr_off_t length = 0;
    for (int i = 0; i < wsdl->texts->nelts; ++i) {
        if (i > 0) {
            apr_brigade_puts(reply, NULL, NULL, address);
        }
        appendText(reply, APR_ARRAY_IDX(wsdl->texts, i, const char*));
    }
    apr_brigade_length(reply, 1, &length);
    ap_set_content_type(r, "text/xml; charset=utf-8");
    ap_set_content_length(r, length);
    APR_BRIGADE_INSERT_TAIL(reply, apr_bucket_eos_create(reply->bucket_alloc));
    ap_pass_brigade(r->output_filters, reply);
    return OK;
}
