/* The counts in the text format of Prometheus. docs/operations.md lists the metrics. */
#include "host/soapStatus.h"

#include <http_protocol.h>

#define NANOSECONDS 1e9

/* Written out, since APR prints no zero before the point. */
const char* const kSoapBucketTexts[kSoapBuckets] = {"0.0005", "0.001", "0.0025", "0.005", "0.01",
                                                    "0.025",  "0.05",  "0.1",    "0.25",  "0.5",
                                                    "1",      "2.5",   "5",      "10",    "+Inf"};

typedef void WriteService(request_rec*, const struct soapServiceView*);
typedef void WriteOperation(request_rec*, const char* location, const struct soapOperationView*);

/* A text as the value of a label. */
static const char* label(request_rec* r, const char* text) {
    char* const value = apr_palloc(r->pool, 2 * strlen(text) + 1);
    char* end = value;
    for (; *text; ++text) {
        if (*text == '\\' || *text == '"' || *text == '\n') {
            *end++ = '\\';
        }
        *end++ = *text;
        if (*text == '\n') {
            end[-1] = 'n';
        }
    }
    *end = '\0';
    return value;
}

static void begin(request_rec* r, const char* name, const char* type, const char* help) {
    ap_rprintf(r, "# HELP %s %s\n# TYPE %s %s\n", name, help, name, type);
}

static void forServices(request_rec* r, const apr_array_header_t* services, WriteService* write) {
    for (int i = 0; i < services->nelts; ++i) {
        write(r, &APR_ARRAY_IDX(services, i, struct soapServiceView));
    }
}

static void forOperations(request_rec* r, const apr_array_header_t* services,
                          WriteOperation* write) {
    for (int i = 0; i < services->nelts; ++i) {
        const struct soapServiceView* service = &APR_ARRAY_IDX(services, i, struct soapServiceView);
        const char* location = label(r, service->counts->path);
        for (int j = 0; j < service->operations->nelts; ++j) {
            write(r, location, &APR_ARRAY_IDX(service->operations, j, struct soapOperationView));
        }
    }
}

static void writeCalls(request_rec* r, const char* location, const struct soapOperationView* view) {
    for (int i = 0; i < kSoapOutcomes; ++i) {
        ap_rprintf(r,
                   "san_calls_total{location=\"%s\",operation=\"%s\",outcome=\"%s\"} "
                   "%" APR_UINT64_T_FMT "\n",
                   location, view->name, kSoapOutcomeNames[i], view->outcomes[i]);
    }
}

static void writeHistogram(request_rec* r, const char* name, const char* location,
                           const char* operation, const struct soapHistogram* histogram) {
    uint64_t sum = 0;
    for (int i = 0; i < kSoapBuckets; ++i) {
        sum += histogram->buckets[i];
        ap_rprintf(r,
                   "%s_bucket{location=\"%s\",operation=\"%s\",le=\"%s\"} %" APR_UINT64_T_FMT "\n",
                   name, location, operation, kSoapBucketTexts[i], sum);
    }
    ap_rprintf(r, "%s_sum{location=\"%s\",operation=\"%s\"} %.6f\n", name, location, operation,
               (double)histogram->sum / NANOSECONDS);
    ap_rprintf(r, "%s_count{location=\"%s\",operation=\"%s\"} %" APR_UINT64_T_FMT "\n", name,
               location, operation, sum);
}

static void writeWhole(request_rec* r, const char* location, const struct soapOperationView* view) {
    writeHistogram(r, "san_call_duration_seconds", location, view->name, &view->whole);
}

static void writeArray(request_rec* r, const char* location, const struct soapOperationView* view) {
    writeHistogram(r, "san_array_duration_seconds", location, view->name, &view->array);
}

static void writeInProgress(request_rec* r, const char* location,
                            const struct soapOperationView* view) {
    ap_rprintf(r, "san_calls_in_progress{location=\"%s\",operation=\"%s\"} %u\n", location,
               view->name, view->inProgress);
}

static void writeOldestOf(request_rec* r, const char* location,
                          const struct soapOperationView* view) {
    ap_rprintf(r, "san_oldest_call_of_operation_seconds{location=\"%s\",operation=\"%s\"} %.3f\n",
               location, view->name, view->oldest);
}

static void writeOldest(request_rec* r, const struct soapServiceView* service) {
    ap_rprintf(r, "san_oldest_call_seconds{location=\"%s\"} %.3f\n",
               label(r, service->counts->path), service->oldest);
}

static void writeWaiting(request_rec* r, const struct soapServiceView* service) {
    ap_rprintf(r, "san_calls_waiting_for_array{location=\"%s\"} %u\n",
               label(r, service->counts->path), service->waiting);
}

static void writeArrayUp(request_rec* r, const struct soapServiceView* service) {
    ap_rprintf(r, "san_array_answers{location=\"%s\"} %d\n", label(r, service->counts->path),
               service->trouble == NULL);
}

static void writeRefused(request_rec* r, const struct soapServiceView* service) {
    for (int i = 0; i < kSoapRefusals; ++i) {
        ap_rprintf(
            r, "san_calls_refused_total{location=\"%s\",reason=\"%s\"} %" APR_UINT64_T_FMT "\n",
            label(r, service->counts->path), kSoapRefusalNames[i], service->counts->refused[i]);
    }
}

static void writeLostLines(request_rec* r, const struct soapServiceView* service) {
    ap_rprintf(r, "san_lost_log_lines_total{location=\"%s\"} %" APR_UINT64_T_FMT "\n",
               label(r, service->counts->path), service->counts->lostLogLines);
}

static void writeContexts(request_rec* r, const struct soapServiceView* service) {
    const char* location = label(r, service->counts->path);
    ap_rprintf(r, "san_contexts_total{location=\"%s\",kind=\"made\"} %" APR_UINT64_T_FMT "\n",
               location, service->counts->contextsMade);
    ap_rprintf(r, "san_contexts_total{location=\"%s\",kind=\"reused\"} %" APR_UINT64_T_FMT "\n",
               location, service->counts->contextsReused);
}

void soapSendMetrics(request_rec* r, const apr_array_header_t* services) {
    ap_set_content_type(r, "text/plain; version=0.0.4; charset=utf-8");
    begin(r, "san_calls_total", "counter", "Calls that ended, by how they did.");
    forOperations(r, services, writeCalls);
    begin(r, "san_call_duration_seconds", "histogram",
          "Time from a request that is whole to its reply.");
    forOperations(r, services, writeWhole);
    begin(r, "san_array_duration_seconds", "histogram",
          "Time spent waiting for the array, of calls that asked it.");
    forOperations(r, services, writeArray);
    begin(r, "san_calls_in_progress", "gauge", "Calls at work.");
    forOperations(r, services, writeInProgress);
    begin(r, "san_oldest_call_seconds", "gauge", "Age of the oldest call at work, 0 without one.");
    forServices(r, services, writeOldest);
    begin(r, "san_oldest_call_of_operation_seconds", "gauge",
          "Age of the operation's oldest call at work, 0 without one.");
    forOperations(r, services, writeOldestOf);
    begin(r, "san_calls_waiting_for_array", "gauge", "Calls at work that wait for the array.");
    forServices(r, services, writeWaiting);
    begin(r, "san_array_answers", "gauge", "0 while calls show that the array does not answer.");
    forServices(r, services, writeArrayUp);
    begin(r, "san_calls_refused_total", "counter", "Requests refused before the service saw them.");
    forServices(r, services, writeRefused);
    begin(r, "san_lost_log_lines_total", "counter", "Lines that the system log did not take.");
    forServices(r, services, writeLostLines);
    begin(r, "san_contexts_total", "counter", "Engine contexts set up, and used again.");
    forServices(r, services, writeContexts);
}
