/* The handler gsoap-status: reads the counts, judges the array, and answers for the health check.
 */
#include "host/soapStatus.h"

#include <apr_strings.h>
#include <http_core.h>
#include <http_protocol.h>
#include <http_request.h>

#define NANOSECONDS 1e9

/* A call usually waits for milliseconds. One that has waited this long shows that the array is
 * silent. */
#define SILENT_SECONDS 10.0
/* For this long a call that got no answer counts against the array. After that the array counts as
 * healthy again until another call fails: a server that gets no calls must not stay out of service
 * for ever. */
#define FAILED_SECONDS 30.0

static uint64_t get(const uint64_t* count) {
    return __atomic_load_n(count, __ATOMIC_RELAXED);
}

static double secondsSince(uint64_t then, uint64_t now) {
    return now > then ? (double)(now - then) / NANOSECONDS : 0.0;
}

static void addHistogram(struct soapHistogram* sum, const struct soapHistogram* counts) {
    for (int i = 0; i < kSoapBuckets; ++i) {
        sum->buckets[i] += get(&counts->buckets[i]);
    }
    sum->sum += get(&counts->sum);
}

/* The view of this name; a new one where two processes did not make a row each. */
static int findView(apr_array_header_t* operations, const char* name) {
    for (int i = 0; i < operations->nelts; ++i) {
        if (strcmp(APR_ARRAY_IDX(operations, i, struct soapOperationView).name, name) == 0) {
            return i;
        }
    }
    APR_ARRAY_PUSH(operations, struct soapOperationView) = (struct soapOperationView){.name = name};
    return operations->nelts - 1;
}

/* Fills `viewOf` with the view of each row of the counts. */
static void viewOperations(struct soapServiceView* service, int* viewOf) {
    for (int i = 0; i < kSoapMaxOperations; ++i) {
        const struct soapOperationCounts* row = &service->counts->operations[i];
        viewOf[i] = 0;
        if (__atomic_load_n(&row->state, __ATOMIC_ACQUIRE) != kSoapNamed) {
            continue;
        }
        viewOf[i] = findView(service->operations, i == 0 ? "none" : row->name);
        struct soapOperationView* view =
            &APR_ARRAY_IDX(service->operations, viewOf[i], struct soapOperationView);
        for (int outcome = 0; outcome < kSoapOutcomes; ++outcome) {
            const uint64_t number = get(&row->outcomes[outcome]);
            view->outcomes[outcome] += number;
            view->calls += number;
            service->calls += number;
        }
        addHistogram(&view->whole, &row->whole);
        addHistogram(&view->array, &row->array);
    }
}

static void viewPlaces(struct soapServiceView* service, const int* viewOf, uint32_t places) {
    const uint64_t now = soapNow();
    for (uint32_t i = 0; i < places; ++i) {
        const struct soapPlace* place = &service->counts->places[i];
        const uint64_t began = get(&place->began);
        const uint64_t asked = get(&place->asked);
        const uint32_t row = __atomic_load_n(&place->operation, __ATOMIC_RELAXED);
        if (began == 0 || row >= kSoapMaxOperations) {
            continue;
        }
        struct soapOperationView* view =
            &APR_ARRAY_IDX(service->operations, viewOf[row], struct soapOperationView);
        const double age = secondsSince(began, now);
        ++view->inProgress;
        ++service->inProgress;
        view->oldest = age > view->oldest ? age : view->oldest;
        service->oldest = age > service->oldest ? age : service->oldest;
        if (asked) {
            const double wait = secondsSince(asked, now);
            ++service->waiting;
            service->oldestWait = wait > service->oldestWait ? wait : service->oldestWait;
        }
    }
}

static const char* judgeArray(apr_pool_t* pool, const struct soapServiceView* service) {
    const uint64_t now = soapNow();
    const uint64_t failed = get(&service->counts->arrayFailed);
    if (service->oldestWait > SILENT_SECONDS) {
        return apr_psprintf(pool, "a call has waited for the array for %.0f seconds",
                            service->oldestWait);
    }
    if (failed > get(&service->counts->arrayAnswered) &&
        secondsSince(failed, now) < FAILED_SECONDS) {
        return apr_psprintf(pool, "the array gave no answer %.0f seconds ago",
                            secondsSince(failed, now));
    }
    return NULL;
}

apr_array_header_t* soapViewServices(apr_pool_t* pool) {
    const struct soapCounts* all = soapAllCounts();
    apr_array_header_t* services = apr_array_make(pool, 1, sizeof(struct soapServiceView));
    for (int i = 0; all && i < kSoapMaxServices; ++i) {
        const struct soapServiceCounts* counts = &all->services[i];
        int viewOf[kSoapMaxOperations];
        if (__atomic_load_n(&counts->state, __ATOMIC_ACQUIRE) != kSoapNamed) {
            break;
        }
        struct soapServiceView* service = &APR_ARRAY_PUSH(services, struct soapServiceView);
        *service = (struct soapServiceView){.counts = counts};
        service->operations = apr_array_make(pool, 16, sizeof(struct soapOperationView));
        viewOperations(service, viewOf);
        viewPlaces(service, viewOf, all->places);
        service->trouble = judgeArray(pool, service);
    }
    return services;
}

static int sendHealth(request_rec* r, const apr_array_header_t* services) {
    const char* text = "";
    int isWell = 1;
    for (int i = 0; i < services->nelts; ++i) {
        const struct soapServiceView* service = &APR_ARRAY_IDX(services, i, struct soapServiceView);
        isWell = isWell && !service->trouble;
        text = apr_pstrcat(r->pool, text, service->counts->path, ": ",
                           service->trouble ? service->trouble : "ok", "\n", NULL);
    }
    r->status = isWell ? HTTP_OK : HTTP_SERVICE_UNAVAILABLE;
    ap_rputs(text, r);
    return OK;
}

static int sendDeepHealth(request_rec* r) {
    const apr_array_header_t* services = soapConfiguredServices();
    const char* text = "";
    int isWell = 1;
    for (int i = 0; i < services->nelts; ++i) {
        struct soapService* service = APR_ARRAY_IDX(services, i, struct soapService*);
        if (service->ping) {
            const char* trouble = soapPing(r, service);
            isWell = isWell && !trouble;
            text = apr_pstrcat(r->pool, text, service->path, ": ", trouble ? trouble : "ok", "\n",
                               NULL);
        }
    }
    r->status = !*text ? HTTP_NOT_IMPLEMENTED : isWell ? HTTP_OK : HTTP_SERVICE_UNAVAILABLE;
    ap_rputs(*text ? text : "No SOAPPing says what to ask.\n", r);
    return OK;
}

/* The last part of the path chooses, whatever the location is called. */
static int endsIn(const request_rec* r, const char* name) {
    const char* last = strrchr(r->uri, '/');
    return last && strcmp(last + 1, name) == 0;
}

int soapStatusHandler(request_rec* r) {
    if (!r->handler || strcmp(r->handler, SOAP_STATUS_HANDLER) != 0) {
        return DECLINED;
    }
    if (r->method_number != M_GET) {
        ap_allow_standard_methods(r, REPLACE_ALLOW, M_GET, -1);
        return HTTP_METHOD_NOT_ALLOWED;
    }
    apr_table_setn(r->headers_out, "Cache-Control", "no-store");
    ap_set_content_type(r, "text/plain; charset=utf-8");
    if (endsIn(r, "health") && r->args && strcmp(r->args, "deep") == 0) {
        return sendDeepHealth(r);
    }
    const apr_array_header_t* services = soapViewServices(r->pool);
    if (endsIn(r, "health")) {
        return sendHealth(r, services);
    }
    if (endsIn(r, "metrics")) {
        soapSendMetrics(r, services);
    } else {
        soapSendPage(r, services);
    }
    return OK;
}
