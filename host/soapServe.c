/*
 * The engine's context and the call of the plug-in.
 *
 * A context is about 160 KiB, and most of what a small request costs is handling it. So each
 * thread keeps the memory of one, which is set up anew for each request: memory taken from the
 * heap at that size would be mapped, faulted in and unmapped every time.
 *
 * The engine never sees the client's connection: it reads the collected body and writes into a
 * brigade, and everything that could touch a socket or an HTTP header is a hook of this file.
 */
#include "host/modGsoap.h"

#include <apr_thread_proc.h>
#include <http_log.h>

#include "host/serveGuard.h"

/* One per thread, made at its first request. */
struct worker {
    struct soap context;
    struct soapRequestConf conf;
    apr_bucket_brigade* body;  /* what the engine has still to read */
    apr_bucket_brigade* reply; /* what it has written */
};

static apr_threadkey_t* workerKey;

/* Sent where a plug-in gives no answer of its own. */
static const char noAnswer[] =
    "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
    "<SOAP-ENV:Envelope xmlns:SOAP-ENV=\"http://schemas.xmlsoap.org/soap/envelope/\">"
    "<SOAP-ENV:Body><SOAP-ENV:Fault><faultcode>SOAP-ENV:Server</faultcode>"
    "<faultstring>The service failed to answer</faultstring>"
    "</SOAP-ENV:Fault></SOAP-ENV:Body></SOAP-ENV:Envelope>";

void soapServeChildInit(apr_pool_t* pool) {
    apr_threadkey_private_create(&workerKey, free, pool);
}

/* The calling thread's worker; the hooks below run on the thread that serves the request. */
static struct worker* getWorker(void) {
    void* worker = NULL;
    apr_threadkey_private_get(&worker, workerKey);
    if (!worker) {
        worker = calloc(1, sizeof(struct worker));
        if (!worker)
            ap_abort_on_oom();
        apr_threadkey_private_set(worker, workerKey);
    }
    return worker;
}

static size_t receive(struct soap* context, char* target, size_t room) {
    (void)context;
    struct worker* worker = getWorker();
    return worker->body ? soapTakeBody(worker->body, target, room) : 0;
}

static int sendReply(struct soap* context, const char* data, size_t size) {
    (void)context;
    return apr_brigade_write(getWorker()->reply, NULL, NULL, data, size) == APR_SUCCESS ? SOAP_OK
                                                                                        : SOAP_EOF;
}

/* The server reads and writes the HTTP headers; the engine's own are neither wanted nor made. */
static int ignoreStatus(struct soap* context, int status, ULONG64 length) {
    (void)context;
    (void)status;
    (void)length;
    return SOAP_OK;
}

static int ignoreHeader(struct soap* context, const char* key, const char* value) {
    (void)context;
    (void)key;
    (void)value;
    return SOAP_OK;
}

static int refuseHttp(struct soap* context) {
    (void)context;
    return SOAP_SYNTAX_ERROR;
}

static int leaveConnection(struct soap* context) {
    (void)context;
    return SOAP_OK;
}

static int copyConf(struct soap* context, struct soap_plugin* target, struct soap_plugin* source) {
    (void)context;
    target->data = source->data;
    return SOAP_OK;
}

static void deleteConf(struct soap* context, struct soap_plugin* plugin) {
    (void)context; /* runs for the context and for each copy of it; the thread owns the data */
    plugin->data = NULL;
}

static int attachConf(struct soap* context, struct soap_plugin* plugin, void* conf) {
    (void)context;
    plugin->id = SOAP_REQUEST_CONF_ID;
    plugin->data = conf;
    plugin->fcopy = copyConf;
    plugin->fdelete = deleteConf;
    return SOAP_OK;
}

static int prepareContext(struct worker* worker, const struct apache_soap_interface* table) {
    struct soap* context = &worker->context;
    table->init(context);
    context->namespaces = table->namespaces;
    context->frecv = receive;
    context->fsend = sendReply;
    context->fresponse = ignoreStatus;
    context->fposthdr = ignoreHeader;
    context->fparse = refuseHttp;
    context->fpoll = leaveConnection;
    context->fclose = leaveConnection;
    return table->registerPlugin(context, attachConf, &worker->conf);
}

static void takeDownContext(struct soap* context, const struct apache_soap_interface* table) {
    table->destroy(context);
    table->end(context);
    table->done(context);
}

static int callPlugin(struct worker* worker, const struct apache_soap_interface* table) {
    int status = SOAP_OK;
    const char* type = NULL;
    if (prepareContext(worker, table) != SOAP_OK)
        ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, worker->conf.r, "no context for a SOAP request");
    else if (soapServeGuarded(table->serve, &worker->context, &status, &type)) {
        if (!APR_BRIGADE_EMPTY(worker->reply))
            return status == SOAP_OK ? HTTP_OK : HTTP_INTERNAL_SERVER_ERROR;
        ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, worker->conf.r,
                      "the SOAP plug-in gave no answer, its status is %d", status);
    } else {
        ap_log_rerror(APLOG_MARK, APLOG_ERR, 0, worker->conf.r,
                      "the SOAP plug-in let an exception of type %s pass", type);
    }
    apr_brigade_cleanup(worker->reply);
    apr_brigade_puts(worker->reply, NULL, NULL, noAnswer);
    return HTTP_INTERNAL_SERVER_ERROR;
}

int soapServe(request_rec* r, const struct apache_soap_interface* table, apr_bucket_brigade* body,
              apr_bucket_brigade* reply) {
    struct worker* worker = getWorker();
    worker->conf.r = r;
    worker->body = body;
    worker->reply = reply;
    int status = callPlugin(worker, table);
    takeDownContext(&worker->context, table);
    worker->body = worker->reply = NULL;
    worker->conf.r = NULL;
    return status;
}
