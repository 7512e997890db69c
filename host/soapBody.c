/* The request body: collected as the server's own buckets, copied once into the engine. */
#include "host/modGsoap.h"

#include <http_core.h>
#include <http_protocol.h>

static apr_off_t bodyLimit(request_rec* r) {
    apr_off_t configured = ap_get_limit_req_body(r);
    return configured > 0 && configured < SOAP_BODY_LIMIT ? configured : SOAP_BODY_LIMIT;
}

/* The body's length as its sender says, so that too long a body is refused unread; 0 when there
 * is no usable word of it, and reading shows. */
static apr_off_t announcedLength(request_rec* r) {
    const char* text = apr_table_get(r->headers_in, "Content-Length");
    apr_off_t length = 0;
    return text && ap_parse_strict_length(&length, text) ? length : 0;
}

/* Moves what was read to the body; a bucket whose data is on loan is made to own it. */
static int keepBuckets(apr_bucket_brigade* from, apr_bucket_brigade* body, apr_pool_t* pool,
                       apr_off_t* length) {
    int atEnd = 0;
    while (!APR_BRIGADE_EMPTY(from)) {
        apr_bucket* bucket = APR_BRIGADE_FIRST(from);
        const char* data;
        apr_size_t size = 0;
        if (APR_BUCKET_IS_EOS(bucket)) {
            atEnd = 1;
        } else if (!APR_BUCKET_IS_METADATA(bucket) &&
                   apr_bucket_read(bucket, &data, &size, APR_BLOCK_READ) != APR_SUCCESS) {
            return HTTP_BAD_REQUEST;
        }
        if (size == 0) {
            apr_bucket_delete(bucket);
            continue;
        }
        *length += (apr_off_t)size;
        apr_bucket_setaside(bucket, pool);
        APR_BUCKET_REMOVE(bucket);
        APR_BRIGADE_INSERT_TAIL(body, bucket);
    }
    return atEnd ? DONE : OK;
}

int soapReadBody(request_rec* r, apr_bucket_brigade* body) {
    const apr_off_t limit = bodyLimit(r);
    apr_bucket_brigade* part = apr_brigade_create(r->pool, r->connection->bucket_alloc);
    apr_off_t length = 0;
    int status = OK;
    if (announcedLength(r) > limit) {
        return HTTP_REQUEST_ENTITY_TOO_LARGE;
    }
    while (status == OK) {
        apr_status_t got = ap_get_brigade(r->input_filters, part, AP_MODE_READBYTES, APR_BLOCK_READ,
                                          HUGE_STRING_LEN);
        if (got != APR_SUCCESS) {
            return ap_map_http_request_error(got, HTTP_BAD_REQUEST);
        }
        status = keepBuckets(part, body, r->pool, &length);
        if (length > limit) {
            return HTTP_REQUEST_ENTITY_TOO_LARGE;
        }
    }
    return status == DONE ? OK : status;
}

size_t soapTakeBody(apr_bucket_brigade* body, char* target, size_t room) {
    size_t taken = 0;
    while (taken < room && !APR_BRIGADE_EMPTY(body)) {
        apr_bucket* bucket = APR_BRIGADE_FIRST(body);
        const char* data;
        apr_size_t size;
        if (apr_bucket_read(bucket, &data, &size, APR_BLOCK_READ) != APR_SUCCESS) {
            break;
        }
        if (size > room - taken) {
            size = room - taken;
            apr_bucket_split(bucket, size);
        }
        memcpy(target + taken, data, size);
        taken += size;
        apr_bucket_delete(bucket);
    }
    return taken;
}
