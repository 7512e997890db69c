/*
 * The engine's context and the call of the plug-in.
 *
 * A context is about 160 KiB, and most of what a small request costs is handling it. So a context
 * that is set up is used again: a plug-in works on a copy of it, and what it left untouched is as
 * good as new. The lowest free slot is taken first, so that a few requests at a time keep to a few
 * contexts, which stay in the processor's cache, however many threads take turns.
 *
 * The engine never sees the client's connection: it reads the collected body and writes into a
 * brigade, and everything that could touch a socket or an HTTP header is a hook of this file.
 */
#include "host/modGsoap.h"

#include <apr_strings.h>
#include <http_log.h>
#include <stdlib.h>

#include "host/include/soapRequestReport.h"
#include "host/serveGuard.h"
#include "host/soapPlugin.h"

/* A context and what its hooks need. */
struct readyContext {
    struct soap context;
    struct soapRequestConf conf;
    struct soapCall* call;
    apr_bucket_brigade* body; /* what the engine has still to read */
    struct soapBlocks reply;  /* what it has written */
    int isCut;                /* there was no memory for all of the reply */
    int spoilt;               /* the context is not as it was set up */
    short version;            /* of SOAP, in which the reply is written */
};

/* The one whose request the thread serves: the hooks run with copies of its context too. */
static __thread struct readyContext* current;

/* Sent where a plug-in gives no answer of its own. */
static const char kNoAnswer[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<SOAP-ENV:Envelope xmlns:SOAP-ENV=\"http://schemas.xmlsoap.org/soap/envelope/\">"
    "<SOAP-ENV:Body><SOAP-ENV:Fault><faultcode>SOAP-ENV:Server</faultcode>"
    "<faultstring>The service failed to answer</faultstring>"
    "</SOAP-ENV:Fault></SOAP-ENV:Body></SOAP-ENV:Envelope>";

/* The context that a hook works for; null when no request is being served. Most plug-ins serve with
 * a copy of it; one that uses the context itself leaves it changed, which is noted. */
static struct readyContext* noteUse(const struct soap* context) {
    if (current && context == &current->context) {
        current->spoilt = 1;
    }
    return current;
}

static size_t receive(struct soap* context, char* target, size_t room) {
    struct readyContext* ready = noteUse(context);
    return ready ? soapTakeBody(ready->body, target, room) : 0;
}

static int sendReply(struct soap* context, const char* data, size_t size) {
    struct readyContext* ready = noteUse(context);
    if (!ready || !soapCopyBytes(&ready->reply, data, size)) {
        if (ready) {
            ready->isCut = 1;
        }
        return SOAP_EOF;
    }
    ready->version = context->version;
    return SOAP_OK;
}

/* What the plug-in reports goes to the call that its thread serves. */
static void reportOperation(const char* name) {
    if (current && name) {
        soapNoteOperation(current->call, name);
    }
}

static void reportCluster(const char* id) {
    if (current && id) {
        apr_cpystrn(current->call->cluster, id, sizeof current->call->cluster);
    }
}

static void reportArray(int begins) {
    if (current) {
        soapNoteArray(current->call, begins);
    }
}

static void reportEnd(enum SoapReportedEnd end) {
    if (current) {
        current->call->outcomeIsReported = 1;
        current->call->outcome = end == SOAP_REFUSED_BY_ARRAY ? kSoapRefusedByArray : kSoapNoAnswer;
    }
}

static void reportLostLogLines(uint32_t count) {
    if (current) {
        current->call->lostLogLines += count;
    }
}

static struct soapRequestReport report = {.length = sizeof report,
                                          .operation = reportOperation,
                                          .cluster = reportCluster,
                                          .asksArray = reportArray,
                                          .ended = reportEnd,
                                          .lostLogLines = reportLostLogLines};

static int prepareContext(struct readyContext* ready, const struct apache_soap_interface* table) {
    struct soap* context = &ready->context;
    soapSetUpContext(context, table, receive, sendReply);
    /* The last one stands first, where isAsNew looks. */
    const int status = soapAttach(context, table, SOAP_REQUEST_REPORT_ID, &report);
    return status == SOAP_OK ? soapAttach(context, table, SOAP_REQUEST_CONF_ID, &ready->conf)
                             : status;
}

static void freeContext(struct readyContext* ready, const struct apache_soap_interface* table) {
    struct soap* context = &ready->context;
    table->destroy(context);
    table->end(context);
    table->done(context);
    free(ready);
}

/* Gives null when there is no memory for a context. */
static struct readyContext* makeContext(const struct apache_soap_interface* table) {
    struct readyContext* ready = calloc(1, sizeof *ready);
    if (ready && prepareContext(ready, table) != SOAP_OK) {
        freeContext(ready, table);
        return NULL;
    }
    return ready;
}

void soapFreeReady(struct soapLibrary* library) {
    for (int i = 0; i < SOAP_READY_CONTEXTS; ++i) {
        if (library->contexts[i]) {
            freeContext(library->contexts[i], library->table);
        }
        library->contexts[i] = NULL;
    }
}

static void countContext(uint64_t* count) {
    if (count) {
        soapAdd(count, 1);
    }
}

static struct readyContext* takeContext(struct soapLibrary* library,
                                        struct soapServiceCounts* counts) {
    for (int i = 0; i < SOAP_READY_CONTEXTS; ++i) {
        struct readyContext** slot = &library->contexts[i];
        if (__atomic_load_n(slot, __ATOMIC_RELAXED)) {
            struct readyContext* ready = __atomic_exchange_n(slot, NULL, __ATOMIC_ACQUIRE);
            if (ready) {
                countContext(counts ? &counts->contextsReused : NULL);
                return ready;
            }
        }
    }
    countContext(counts ? &counts->contextsMade : NULL);
    return makeContext(library->table);
}

/* Memory that was taken from the context itself goes with it, and so do engine plug-ins that were
 * registered with it: they would gather from request to request. */
static int isAsNew(const struct readyContext* ready) {
    const struct soap* context = &ready->context;
    return !ready->spoilt && !context->alist && !context->clist && context->plugins &&
           context->plugins->data == &ready->conf;
}

static void giveBack(struct soapLibrary* library, struct readyContext* ready) {
    ready->conf.r = NULL;
    ready->body = ready->reply.brigade = NULL;
    for (int i = 0; i < SOAP_READY_CONTEXTS && isAsNew(ready); ++i) {
        struct readyContext* empty = NULL;
        if (__atomic_compare_exchange_n(&library->contexts[i], &empty, ready, 0, __ATOMIC_RELEASE,
                                        __ATOMIC_RELAXED)) {
            return;
        }
    }
    freeContext(ready, library->table);
}

/* The HTTP status of what the plug-in wrote; 0 when it wrote nothing, which the log then tells. */
static int callPlugin(struct readyContext* ready, const struct apache_soap_interface* table) {
    int status = SOAP_OK;
    const char* type = NULL;
    if (!soapServeGuarded(table->serve, &ready->context, &status, &type)) {
        ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, ready->conf.r,
                      "the SOAP plug-in let an exception of type %s pass", type);
    } else if (ready->isCut || APR_BRIGADE_EMPTY(ready->reply.brigade)) {
        ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, ready->conf.r,
                      "the SOAP plug-in gave no answer, its status is %d", status);
    } else {
        return status == SOAP_OK ? HTTP_OK : HTTP_INTERNAL_SERVER_ERROR;
    }
    ready->spoilt = 1;
    return 0;
}

int soapServe(request_rec* r, struct soapLibrary* library, struct soapCall* call,
              apr_bucket_brigade* body, apr_bucket_brigade* reply, int* isSoap12) {
    int status = 0;
    struct readyContext* ready = takeContext(library, call->counts);
    if (ready) {
        ready->conf.r = r;
        ready->call = call;
        ready->body = body;
        ready->reply = (struct soapBlocks){.brigade = reply};
        ready->isCut = 0;
        ready->version = 0;
        current = ready;
        status = callPlugin(ready, library->table);
        current = NULL;
        *isSoap12 = ready->version == 2;
        /* From here on the context may be another thread's. */
        giveBack(library, ready);
    } else {
        ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, r, "no context for a SOAP request");
    }
    soapEndCall(call, status);
    if (status) {
        return status;
    }
    *isSoap12 = 0;
    apr_brigade_cleanup(reply);
    struct soapBlocks answer = {.brigade = reply};
    (void)soapCopyBytes(&answer, kNoAnswer, sizeof kNoAnswer - 1); /* without memory it is empty */
    return HTTP_INTERNAL_SERVER_ERROR;
}
