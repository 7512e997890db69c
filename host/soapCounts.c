/* The memory that the server's processes share; soapCounts.h tells what is in it. */
#include "host/soapCounts.h"

#include <ap_mpm.h>
#include <apr_strings.h>
#include <errno.h>
#include <http_config.h>
#include <http_log.h>
#include <signal.h>
#include <string.h>
#include <sys/mman.h>
#include <time.h>
#include <unistd.h>

APLOG_USE_MODULE(gsoap);

#define RETAINED "mod_gsoap counts"

const char* const kSoapOutcomeNames[kSoapOutcomes] = {
    "answered", "refused_by_service", "refused_by_array", "no_answer_of_array", "failed"};

const char* const kSoapRefusalNames[kSoapRefusals] = {"method",  "media_type", "size", "no_xml",
                                                      "hostile", "broken",     "busy"};

#define MICROSECONDS 1000ULL
#define MILLISECONDS 1000000ULL
/* The usual ones of Prometheus, and below them three for calls that take less. */
const uint64_t kSoapBucketEnds[kSoapBuckets - 1] = {
    500 * MICROSECONDS,  1 * MILLISECONDS,    2500 * MICROSECONDS, 5 * MILLISECONDS,
    10 * MILLISECONDS,   25 * MILLISECONDS,   50 * MILLISECONDS,   100 * MILLISECONDS,
    250 * MILLISECONDS,  500 * MILLISECONDS,  1000 * MILLISECONDS, 2500 * MILLISECONDS,
    5000 * MILLISECONDS, 10000 * MILLISECONDS};

static struct soapCounts* all;
static int32_t ownPid;
/* Where this thread looks first for a free place: it most likely left it there. */
static __thread unsigned usualPlace;

uint64_t soapNow(void) {
    struct timespec now;
    clock_gettime(CLOCK_MONOTONIC, &now);
    return (uint64_t)now.tv_sec * 1000000000U + (uint64_t)now.tv_nsec;
}

void soapAdd(uint64_t* count, uint64_t number) {
    __atomic_fetch_add(count, number, __ATOMIC_RELAXED);
}

static void put(uint64_t* target, uint64_t value) {
    __atomic_store_n(target, value, __ATOMIC_RELAXED);
}

/* Calls that the server can have at work in all processes together. */
static uint32_t placesOfServer(void) {
    int processes = 1;
    int threads = 1;
    ap_mpm_query(AP_MPMQ_HARD_LIMIT_DAEMONS, &processes);
    ap_mpm_query(AP_MPMQ_HARD_LIMIT_THREADS, &threads);
    const int64_t places = (int64_t)processes * (threads > 0 ? threads : 1);
    return places > 0 && places < kSoapMaxPlaces ? (uint32_t)places : kSoapMaxPlaces;
}

static struct soapCounts* mapCounts(server_rec* server) {
    /* Pages that are never written take no memory. */
    void* room = mmap(NULL, sizeof(struct soapCounts), PROT_READ | PROT_WRITE,
                      MAP_SHARED | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (room == MAP_FAILED) {
        ap_log_error(APLOG_MARK, APLOG_ERR, errno, server,
                     "no shared memory for the SOAP module: it counts nothing, and SOAPMaxCalls "
                     "has no effect");
        return NULL;
    }
    struct soapCounts* counts = room;
    counts->layout = sizeof *counts;
    counts->places = placesOfServer();
    counts->started = soapNow();
    return counts;
}

void soapOpenCounts(server_rec* server) {
    struct soapCounts** retained = ap_retained_data_get(RETAINED);
    if (!retained) {
        retained = ap_retained_data_create(RETAINED, sizeof(struct soapCounts*));
    }
    if (!*retained || (*retained)->layout != sizeof(struct soapCounts)) {
        *retained = mapCounts(server);
    }
    all = *retained;
}

struct soapCounts* soapAllCounts(void) {
    return all;
}

struct soapServiceCounts* soapFindCounts(const char* path) {
    for (int i = 0; all && i < kSoapMaxServices; ++i) {
        struct soapServiceCounts* counts = &all->services[i];
        if (counts->state == kSoapFree) {
            apr_cpystrn(counts->path, path, sizeof counts->path);
            counts->operations[0].state = kSoapNamed;
            __atomic_store_n(&counts->state, kSoapNamed, __ATOMIC_RELEASE);
        }
        if (strncmp(counts->path, path, sizeof counts->path - 1) == 0) {
            return counts;
        }
    }
    return NULL;
}

void soapBeginProcess(void) {
    ownPid = getpid();
    usualPlace = 0; /* makes room for the thread's own data before memory may be scarce */
}

/* The owner is written last, so that nobody sees a free place with another call's times. */
static void leavePlace(struct soapPlace* place) {
    put(&place->began, 0);
    put(&place->asked, 0);
    __atomic_store_n(&place->operation, 0, __ATOMIC_RELAXED);
    __atomic_store_n(&place->owner, 0, __ATOMIC_RELEASE);
}

void soapForgetProcess(int32_t pid) {
    for (int i = 0; all && i < kSoapMaxServices && all->services[i].state == kSoapNamed; ++i) {
        for (uint32_t at = 0; at < all->places; ++at) {
            struct soapPlace* place = &all->services[i].places[at];
            if (__atomic_load_n(&place->owner, __ATOMIC_RELAXED) == pid) {
                leavePlace(place);
            }
        }
    }
}

static uint32_t countPlaces(unsigned limit) {
    return limit > 0 && limit < all->places ? limit : all->places;
}

/* The first free place, looking from the usual one on; `end` when there is none. */
static uint32_t findFree(const struct soapServiceCounts* counts, uint32_t end) {
    uint32_t at = usualPlace < end ? usualPlace : usualPlace % end;
    for (uint32_t looked = 0; looked < end; ++looked) {
        if (__atomic_load_n(&counts->places[at].owner, __ATOMIC_RELAXED) == 0) {
            return at;
        }
        at = at + 1 < end ? at + 1 : 0;
    }
    return end;
}

int soapIsFull(const struct soapServiceCounts* counts, unsigned limit) {
    return counts && limit > 0 && findFree(counts, countPlaces(limit)) == countPlaces(limit);
}

static struct soapPlace* takePlace(struct soapServiceCounts* counts, unsigned limit) {
    const uint32_t end = countPlaces(limit);
    for (uint32_t at; (at = findFree(counts, end)) < end;) {
        int32_t none = 0;
        usualPlace = at;
        if (__atomic_compare_exchange_n(&counts->places[at].owner, &none, ownPid, 0,
                                        __ATOMIC_ACQUIRE, __ATOMIC_RELAXED)) {
            return &counts->places[at];
        }
    }
    return NULL;
}

int soapBeginCall(struct soapCall* call, struct soapServiceCounts* counts, unsigned limit) {
    memset(call, 0, offsetof(struct soapCall, cluster) + 1);
    call->began = soapNow();
    call->counts = counts;
    if (!counts) {
        return 1;
    }
    call->place = takePlace(counts, limit);
    if (call->place) {
        put(&call->place->began, call->began);
    }
    return call->place || limit == 0;
}

/* The row of the operation's counts; the one without a name where there is no room for it. */
static uint32_t findOperation(struct soapServiceCounts* counts, const char* name) {
    for (uint32_t i = 1; i < kSoapMaxOperations; ++i) {
        struct soapOperationCounts* row = &counts->operations[i];
        uint32_t state = __atomic_load_n(&row->state, __ATOMIC_ACQUIRE);
        if (state == kSoapFree &&
            __atomic_compare_exchange_n(&row->state, &state, kSoapBeingNamed, 0, __ATOMIC_ACQUIRE,
                                        __ATOMIC_ACQUIRE)) {
            apr_cpystrn(row->name, name, sizeof row->name);
            __atomic_store_n(&row->state, kSoapNamed, __ATOMIC_RELEASE);
            return i;
        }
        if (state == kSoapNamed && strncmp(row->name, name, sizeof row->name - 1) == 0) {
            return i;
        }
    }
    return 0;
}

void soapNoteOperation(struct soapCall* call, const char* name) {
    call->operation = name;
    call->operationRow = call->counts ? findOperation(call->counts, name) : 0;
    if (call->place) {
        __atomic_store_n(&call->place->operation, call->operationRow, __ATOMIC_RELAXED);
    }
}

void soapNoteArray(struct soapCall* call, int begins) {
    const uint64_t now = soapNow();
    call->askedArray = 1;
    call->arrayTime += call->asked ? now - call->asked : 0;
    call->asked = begins ? now : 0;
    if (call->place) {
        put(&call->place->asked, call->asked);
    }
}

static void countTime(struct soapHistogram* histogram, uint64_t time) {
    int bucket = 0;
    while (bucket < kSoapBuckets - 1 && time > kSoapBucketEnds[bucket]) {
        ++bucket;
    }
    soapAdd(&histogram->buckets[bucket], 1);
    soapAdd(&histogram->sum, time);
}

void soapEndCall(struct soapCall* call, int status) {
    const uint64_t now = soapNow();
    if (!status) {
        call->outcome = kSoapFailed;
    } else if (!call->outcomeIsReported) {
        call->outcome = status == HTTP_OK ? kSoapAnswered : kSoapRefusedByService;
    }
    if (!call->counts) {
        return;
    }
    struct soapOperationCounts* row = &call->counts->operations[call->operationRow];
    soapAdd(&row->outcomes[call->outcome], 1);
    countTime(&row->whole, now - call->began);
    if (call->askedArray) {
        countTime(&row->array, call->arrayTime);
        put(call->outcome == kSoapNoAnswer ? &call->counts->arrayFailed
                                           : &call->counts->arrayAnswered,
            now);
    }
    if (call->lostLogLines) {
        soapAdd(&call->counts->lostLogLines, call->lostLogLines);
    }
    if (call->place) {
        leavePlace(call->place);
    }
}
