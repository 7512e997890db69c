/* The request body: collected as the server's own buckets, copied once into the engine. And the
 * copying of bytes into such buckets, which the reply needs as well. */
#include "host/modGsoap.h"

#include <http_core.h>
#include <http_protocol.h>

#include "host/include/soapBodyScan.h"

/* A piece that is smaller is copied instead of kept. */
#define SMALL_PIECE 2048

/* How many pieces any body may come in; a long one may have one more for each MEAN_PIECE bytes. A
 * client chooses its chunks, but not what of a body with a length arrives at a time. */
#define FREE_CHUNKS 1024
#define FREE_PIECES 2048
#define MEAN_PIECE 32

struct bodyReading {
    struct soapBodyScan scan;
    struct soapBlocks body; /* small pieces are copied */
    apr_pool_t* pool;
    apr_off_t length;
    apr_off_t pieces;
    apr_off_t freePieces;
    const char* refusal; /* why the body is not what a client sends */
};

static apr_off_t bodyLimit(request_rec* r) {
    apr_off_t configured = ap_get_limit_req_body(r);
    return configured > 0 && configured < SOAP_BODY_LIMIT ? configured : SOAP_BODY_LIMIT;
}

/* The length that Content-Length announces, so that a body that is too long is refused unread. 0
 * without a usable header: then the length shows while the body is read. */
static apr_off_t announcedLength(request_rec* r) {
    const char* text = apr_table_get(r->headers_in, "Content-Length");
    apr_off_t length = 0;
    return text && ap_parse_strict_length(&length, text) ? length : 0;
}

static void freeUnlessNull(void* piece) {
    if (piece) {
        apr_bucket_free(piece);
    }
}

/* A bucket of no bytes yet. What the library needs for one it takes for granted, so it is asked for
 * and given back before; null when there is no memory. */
static apr_bucket* makeBlock(apr_bucket_alloc_t* list) {
    void* bucket = apr_bucket_alloc(sizeof(apr_bucket), list);
    void* heap = apr_bucket_alloc(sizeof(apr_bucket_heap), list);
    char* bytes = apr_bucket_alloc(APR_BUCKET_BUFF_SIZE, list);
    const int isThere = bucket && heap && bytes;
    freeUnlessNull(bucket);
    freeUnlessNull(heap);
    if (!isThere) {
        freeUnlessNull(bytes);
        return NULL;
    }
    apr_bucket* block = apr_bucket_heap_create(bytes, APR_BUCKET_BUFF_SIZE, apr_bucket_free, list);
    block->length = 0;
    return block;
}

static int addBlock(struct soapBlocks* blocks) {
    blocks->last = makeBlock(blocks->brigade->bucket_alloc);
    if (!blocks->last) {
        return 0;
    }
    blocks->room = APR_BUCKET_BUFF_SIZE;
    APR_BRIGADE_INSERT_TAIL(blocks->brigade, blocks->last);
    return 1;
}

int soapCopyBytes(struct soapBlocks* blocks, const char* data, apr_size_t size) {
    while (size > 0) {
        if (blocks->room == 0 && !addBlock(blocks)) {
            return 0;
        }
        const apr_size_t part = size < blocks->room ? size : blocks->room;
        apr_bucket_heap* heap = blocks->last->data;
        memcpy(heap->base + blocks->last->length, data, part);
        blocks->last->length += part;
        blocks->room -= part;
        data += part;
        size -= part;
    }
    return 1;
}

/* Appends a piece of the body. A large piece is kept without a copy, once its data is its own.
 * Small ones are copied together, since a client may send single bytes and each kept piece costs a
 * bucket. */
static int keepPiece(struct bodyReading* reading, apr_bucket* bucket, const char* data,
                     apr_size_t size) {
    if (size < SMALL_PIECE) {
        return soapCopyBytes(&reading->body, data, size);
    }
    if (apr_bucket_setaside(bucket, reading->pool) != APR_SUCCESS) {
        return 0;
    }
    reading->body.room = 0; /* what comes next goes behind this one */
    APR_BUCKET_REMOVE(bucket);
    APR_BRIGADE_INSERT_TAIL(reading->body.brigade, bucket);
    return 1;
}

/* A chunk of one byte costs the server as much as a hundred bytes cost the engine, so the pieces
 * are counted. Small bodies are not limited. */
static int hasTooManyPieces(struct bodyReading* reading) {
    return ++reading->pieces > reading->freePieces + reading->length / MEAN_PIECE;
}

/* Takes what was read into the body. OK, DONE at its end, or an HTTP status. */
static int keepBuckets(apr_bucket_brigade* from, struct bodyReading* reading) {
    int atEnd = 0;
    for (apr_bucket *bucket = APR_BRIGADE_FIRST(from), *next;
         bucket != APR_BRIGADE_SENTINEL(from) && !reading->refusal; bucket = next) {
        const char* data;
        apr_size_t size = 0;
        if (APR_BUCKET_IS_EOS(bucket)) {
            atEnd = 1;
        } else if (!APR_BUCKET_IS_METADATA(bucket) &&
                   apr_bucket_read(bucket, &data, &size, APR_BLOCK_READ) != APR_SUCCESS) {
            return HTTP_BAD_REQUEST;
        }
        next = APR_BUCKET_NEXT(bucket); /* not before: reading can split a bucket */
        if (size > 0) {
            reading->length += (apr_off_t)size;
            reading->refusal = hasTooManyPieces(reading)
                                   ? "The request body comes in too many pieces."
                                   : soapScan(&reading->scan, data, size);
            if (!keepPiece(reading, bucket, data, size)) {
                return HTTP_INTERNAL_SERVER_ERROR;
            }
        }
    }
    apr_brigade_cleanup(from);
    return atEnd ? DONE : OK;
}

int soapReadBody(request_rec* r, apr_bucket_brigade* body, const char** refusal) {
    const apr_off_t limit = bodyLimit(r);
    apr_bucket_brigade* part = apr_brigade_create(r->pool, r->connection->bucket_alloc);
    struct bodyReading reading;
    int status = OK;
    reading.body = (struct soapBlocks){.brigade = body};
    reading.pool = r->pool;
    reading.length = reading.pieces = 0;
    reading.freePieces =
        apr_table_get(r->headers_in, "Transfer-Encoding") ? FREE_CHUNKS : FREE_PIECES;
    reading.refusal = NULL;
    if (announcedLength(r) > limit) {
        return HTTP_REQUEST_ENTITY_TOO_LARGE;
    }
    soapStartScan(&reading.scan, &kSoapModuleRules);
    while (status == OK) {
        apr_status_t got = ap_get_brigade(r->input_filters, part, AP_MODE_READBYTES, APR_BLOCK_READ,
                                          HUGE_STRING_LEN);
        if (got != APR_SUCCESS) {
            return ap_map_http_request_error(got, HTTP_BAD_REQUEST);
        }
        status = keepBuckets(part, &reading);
        if (reading.refusal) {
            *refusal = reading.refusal;
            return HTTP_BAD_REQUEST;
        }
        if (reading.length > limit) {
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
