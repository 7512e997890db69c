/*
 * What soapStatus.c, soapMetrics.c and soapPage.c share: the counts of one moment, read and added
 * up, and what they say about the array.
 */
#pragma once

#include "host/modGsoap.h"

/* An operation of one service. */
struct soapOperationView {
    const char* name; /* "none" for calls that never got to an operation */
    uint64_t calls;
    uint64_t outcomes[kSoapOutcomes];
    struct soapHistogram whole, array;
    unsigned inProgress;
    double oldest; /* seconds since the oldest of them began */
};

/* One service. Times are in seconds. */
struct soapServiceView {
    const struct soapServiceCounts* counts;
    apr_array_header_t* operations; /* of struct soapOperationView; the first is "none" */
    uint64_t calls;
    unsigned inProgress;
    unsigned waiting; /* of them, for the array */
    double oldest, oldestWait;
    const char* trouble; /* why the array does not answer; null while nothing says so */
};

/* All services of the server, allocated from `pool`. */
apr_array_header_t* soapViewServices(apr_pool_t* pool);

/* soapMetrics.c: the ends of the buckets in seconds, as texts. */
extern const char* const kSoapBucketTexts[kSoapBuckets];

/* soapMetrics.c: all of it in the text format of Prometheus. */
void soapSendMetrics(request_rec* r, const apr_array_header_t* services);

/* soapPage.c: all of it for a person; and a short form for the server's own status page, which has
 * one for programs. */
void soapSendPage(request_rec* r, const apr_array_header_t* services);
int soapExtendStatus(request_rec* r, int flags);

/* soapPing.c: asks the service itself within a time limit of its own. Gives null when it answered,
 * or what came instead. */
const char* soapPing(request_rec* r, struct soapService* service);
