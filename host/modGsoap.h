/*
 * The module's parts and what they share. One file per concern:
 *
 *   modGsoap.c     directives, hooks, registration with the server
 *   soapLibrary.c  takes a plug-in into use
 *   soapPlugin.c   loads it, judges its table, sets up contexts for it
 *   soapHandler.c  the gate: method, content type, size; then body, service, reply
 *   soapBody.c     the request body as the engine's input
 *   soapBodyScan.c refuses bodies that are made to cost much
 *   soapServe.c    the contexts that are ready and the call of the plug-in
 *   soapWsdl.c     the service's description
 *   soapCounts.c   what all processes count together, and the limit of calls at once
 *   soapNotes.c    what the access log can say about a request
 *   soapStatus.c   shows the counts, with soapMetrics.c, soapPage.c and soapPing.c
 *   serveGuard.cpp keeps C++ exceptions of a plug-in inside the request
 */
#pragma once

/* The server's other headers need httpd.h first, and its own look for offsetof. */
#include <stddef.h>

#include <httpd.h>

#include <apr_buckets.h>
#include <apr_tables.h>
#include <http_config.h>

#include "host/include/soapInterface.h"
#include "host/include/soapRequestConf.h"
#include "host/soapCounts.h"

APLOG_USE_MODULE(gsoap);
extern module AP_MODULE_DECLARE_DATA gsoap_module;

/* The handlers: one gives a location's requests to a plug-in, one shows what is counted. */
#define SOAP_HANDLER "gsoap_handler"
#define SOAP_STATUS_HANDLER "gsoap-status"

/* The largest request body in bytes. What an engine spends on a hostile body can grow with the
 * square of its size, so the limit protects the processor; LimitRequestBody can lower it. */
#define SOAP_BODY_LIMIT 131072

/* How many contexts of a plug-in a child process keeps ready; when more requests run at a time, the
 * others set up their own. */
#define SOAP_READY_CONTEXTS 64

/* A plug-in: owned by the configuration, its table is set when the server has started. */
struct soapLibrary {
    const char* path;
    const struct apache_soap_interface* table;
    /* What soapServe.c keeps for the next requests; taken and given back by atomic exchange. */
    struct readyContext* contexts[SOAP_READY_CONTEXTS];
};

/* A service description, cut at its placeholders: address, text, address, text, ... with one
 * text more than addresses. Owned by the configuration. */
struct soapWsdl {
    apr_array_header_t* texts; /* of const char * */
};

/* A path at which a plug-in serves, also where several virtual hosts have it: they count as one.
 * Owned by the configuration; its counts are set when the server has started, and are null where
 * there is no room for them. */
struct soapService {
    const char* path;
    struct soapLibrary* library;
    struct soapServiceCounts* counts;
    const char* ping; /* the request of the deep health check; null for none */
    int pingSeconds;
    int isPinging; /* in this process; atomic */
};

/* What the directives of one location say; null where they say nothing. */
struct soapLocation {
    struct soapLibrary* library;
    struct soapService* service; /* the section that names the library */
    struct soapWsdl* wsdl;
    int maxCalls; /* 0 for no limit, -1 where it is not said */
};

/* soapLibrary.c: loads the plug-in and fills in its table. False when it cannot be used; the
 * error log then has a line that says why. */
int soapLoadLibrary(struct soapLibrary* library, apr_pool_t* pool, server_rec* server);

/* soapWsdl.c: reads a whole file as a text; gives null, or an error text from `pool`. */
const char* soapReadFile(const char* path, char** text, apr_pool_t* pool);
/* soapWsdl.c: reads a file into `wsdl`; gives null, or an error text from `pool`. */
const char* soapReadWsdl(struct soapWsdl** wsdl, const char* path, apr_pool_t* pool);
/* soapWsdl.c: answers with the description, with the address by which the client came. */
int soapSendWsdl(request_rec* r, const struct soapWsdl* wsdl);

/* Bytes that are copied together at the end of a brigade; only that is set at first. */
struct soapBlocks {
    apr_bucket_brigade* brigade;
    apr_bucket* last; /* the next bytes go into it, */
    apr_size_t room;  /* which has so much room */
};

/* soapBody.c: appends bytes; false when there is no memory. */
int soapCopyBytes(struct soapBlocks* blocks, const char* data, apr_size_t size);
/* soapBody.c: collects the request body in `body`. OK or an HTTP status; with a body that no
 * client sends, `refusal` then says what is wrong with it. */
int soapReadBody(request_rec* r, apr_bucket_brigade* body, const char** refusal);
/* soapBody.c: moves up to `room` bytes of the body to `target`; gives how many, 0 at its end. */
size_t soapTakeBody(apr_bucket_brigade* body, char* target, size_t room);

/* soapServe.c: gives up what is kept for the next requests; no request may be served any more. */
void soapFreeReady(struct soapLibrary* library);
/* soapServe.c: lets the plug-in answer `body`, which `call` counts. Fills `reply` and says whether
 * its envelope is one of SOAP 1.2; gives the HTTP status for it. */
int soapServe(request_rec* r, struct soapLibrary* library, struct soapCall* call,
              apr_bucket_brigade* body, apr_bucket_brigade* reply, int* isSoap12);

/* soapNotes.c: notes for the access log, of a request that the gate refused and of a call. */
void soapNoteRefusal(request_rec* r, enum SoapRefusal reason);
void soapNoteCall(request_rec* r, const struct soapCall* call);

/* modGsoap.c: the services of the configuration, an array of struct soapService *. */
const apr_array_header_t* soapConfiguredServices(void);

/* soapHandler.c, soapStatus.c: answer a request of their handlers. */
int soapHandler(request_rec* r);
int soapStatusHandler(request_rec* r);
