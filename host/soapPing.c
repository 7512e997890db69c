/*
 * A request that the server asks the service itself, for the deep health check.
 *
 * The plug-in waits for the array without limit, so it is asked on a thread of its own, for which
 * the check waits as long as it may. A thread that is left waiting ends when the array answers or
 * the process ends; while it waits no second one is started, so there is one for a service and
 * process at most. It holds a place among the calls at work like every call.
 */
#include "host/soapStatus.h"

#include <apr_strings.h>
#include <errno.h>
#include <http_core.h>
#include <http_protocol.h>
#include <pthread.h>
#include <signal.h>
#include <time.h>

/* A Ping under way. Owned by the thread that asks; by the one that waits for it until that gives
 * up. */
struct ping {
    struct soapService* service;
    apr_pool_t* pool;
    request_rec request;
    conn_rec connection;
    pthread_mutex_t lock;
    pthread_cond_t ended;
    int isDone, isLeft;
    int status; /* of HTTP */
};

static void freePing(struct ping* ping) {
    pthread_cond_destroy(&ping->ended);
    pthread_mutex_destroy(&ping->lock);
    apr_pool_destroy(ping->pool);
}

/* The request that the plug-in sees holds the two addresses and what the error log needs, no
 * more. */
static struct ping* makePing(request_rec* r, struct soapService* service) {
    apr_pool_t* pool;
    if (apr_pool_create_unmanaged_ex(&pool, NULL, NULL) != APR_SUCCESS) {
        return NULL;
    }
    struct ping* ping = apr_pcalloc(pool, sizeof *ping);
    ping->pool = pool;
    ping->service = service;
    ping->connection.pool = pool;
    ping->connection.base_server = r->server;
    ping->connection.client_ip = apr_pstrdup(pool, "127.0.0.1");
    ping->connection.local_ip = apr_pstrdup(pool, "127.0.0.1");
    ping->connection.bucket_alloc = apr_bucket_alloc_create(pool);
    ping->request.pool = pool;
    ping->request.connection = &ping->connection;
    ping->request.server = r->server;
    ping->request.per_dir_config = r->server->lookup_defaults;
    ping->request.useragent_ip = ping->connection.client_ip;
    pthread_condattr_t attributes;
    pthread_condattr_init(&attributes);
    pthread_condattr_setclock(&attributes, CLOCK_MONOTONIC);
    pthread_cond_init(&ping->ended, &attributes);
    pthread_condattr_destroy(&attributes);
    pthread_mutex_init(&ping->lock, NULL);
    return ping;
}

static int askService(struct ping* ping) {
    struct soapCall call;
    apr_bucket_alloc_t* list = ping->connection.bucket_alloc;
    apr_bucket_brigade* body = apr_brigade_create(ping->pool, list);
    apr_bucket_brigade* reply = apr_brigade_create(ping->pool, list);
    int isSoap12;
    apr_brigade_puts(body, NULL, NULL, ping->service->ping);
    soapBeginCall(&call, ping->service->counts, 0);
    return soapServe(&ping->request, ping->service->library, &call, body, reply, &isSoap12);
}

static void* runPing(void* data) {
    struct ping* ping = data;
    const int status = askService(ping);
    __atomic_store_n(&ping->service->isPinging, 0, __ATOMIC_RELEASE);
    pthread_mutex_lock(&ping->lock);
    ping->status = status;
    ping->isDone = 1;
    const int isLeft = ping->isLeft;
    pthread_cond_signal(&ping->ended);
    pthread_mutex_unlock(&ping->lock);
    if (isLeft) {
        freePing(ping);
    }
    return NULL;
}

static int startPing(struct ping* ping) {
    pthread_t thread;
    pthread_attr_t attributes;
    sigset_t every;
    sigset_t before;
    pthread_attr_init(&attributes);
    pthread_attr_setdetachstate(&attributes, PTHREAD_CREATE_DETACHED);
    /* The server's signals are for its own threads. */
    sigfillset(&every);
    pthread_sigmask(SIG_SETMASK, &every, &before);
    const int error = pthread_create(&thread, &attributes, runPing, ping);
    pthread_sigmask(SIG_SETMASK, &before, NULL);
    pthread_attr_destroy(&attributes);
    return error == 0;
}

/* The status of the answer; 0 when it did not come in time, and the thread then frees the Ping. */
static int waitForPing(struct ping* ping, int seconds) {
    struct timespec end;
    int status = 0;
    int error = 0;
    clock_gettime(CLOCK_MONOTONIC, &end);
    end.tv_sec += seconds;
    pthread_mutex_lock(&ping->lock);
    while (!ping->isDone && error != ETIMEDOUT) {
        error = pthread_cond_timedwait(&ping->ended, &ping->lock, &end);
    }
    const int isDone = ping->isDone;
    status = ping->status;
    ping->isLeft = !isDone;
    pthread_mutex_unlock(&ping->lock);
    if (isDone) {
        freePing(ping);
    }
    return isDone ? status : 0;
}

const char* soapPing(request_rec* r, struct soapService* service) {
    int isPinging = 0;
    if (!__atomic_compare_exchange_n(&service->isPinging, &isPinging, 1, 0, __ATOMIC_ACQUIRE,
                                     __ATOMIC_RELAXED)) {
        return "the Ping of an earlier check still waits";
    }
    struct ping* ping = makePing(r, service);
    if (!ping || !startPing(ping)) {
        __atomic_store_n(&service->isPinging, 0, __ATOMIC_RELEASE);
        if (ping) {
            freePing(ping);
        }
        return "no thread for a Ping";
    }
    switch (waitForPing(ping, service->pingSeconds)) {
        case HTTP_OK:
            return NULL;
        case 0:
            return apr_psprintf(r->pool, "no answer to a Ping within %d seconds",
                                service->pingSeconds);
        default:
            return "a Ping was answered with a fault";
    }
}
