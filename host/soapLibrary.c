/* Loads a plug-in and judges the table that it fills. */
#include "host/modGsoap.h"

#include <dlfcn.h>
#include <http_log.h>
#include <stdlib.h>

/* Room for a table that is longer than the one known here: a plug-in of another release then
 * is refused for the length that it reports, and has written over nothing. */
union tableRoom {
    struct apache_soap_interface table;
    char room[16 * APACHE_SOAP_LENGTH];
};

#define MARK '\x5A'
#define BEYOND_CONTEXT 4096

static const char kProbe[] = "mod_gsoap probe";

static void forgetProbe(struct soap* context, struct soap_plugin* plugin) {
    (void)context;
    plugin->data = NULL;
}

static int refuse(server_rec* server, const struct soapLibrary* library, const char* reason) {
    ap_log_error(APLOG_MARK, APLOG_EMERG, 0, server, "SOAPLibrary %s: %s", library->path, reason);
    return 0;
}

static int isComplete(const struct apache_soap_interface* table) {
    return table->init && table->serve && table->destroy && table->end && table->done &&
           table->registerPlugin && table->lookupPlugin && table->namespaces;
}

static int acceptTable(const struct apache_soap_interface* table, const struct soapLibrary* library,
                       server_rec* server) {
    if (table->length != APACHE_SOAP_LENGTH || table->revision != APACHE_SOAP_REVISION) {
        ap_log_error(APLOG_MARK, APLOG_EMERG, 0, server,
                     "SOAPLibrary %s: its interface table has length %u and revision %u; "
                     "this module knows length %u and revision %u only",
                     library->path, table->length, table->revision, APACHE_SOAP_LENGTH,
                     APACHE_SOAP_REVISION);
        return 0;
    }
    return isComplete(table)
               ? 1
               : refuse(server, library, "its interface table lacks functions that are needed");
}

static int attachProbe(struct soap* context, struct soap_plugin* plugin, void* data) {
    (void)context;
    plugin->id = kProbe;
    plugin->data = data;
    plugin->fcopy = NULL;
    plugin->fdelete = forgetProbe;
    return SOAP_OK;
}

/* Sets up a context in a room whose end is marked, and looks at it as the module lays it out. */
static int fitsEngine(const struct apache_soap_interface* table, char* room) {
    struct soap* context = (struct soap*)(void*)room;
    memset(room, MARK, sizeof *context + BEYOND_CONTEXT);
    table->init(context);
    int fits = context->state == SOAP_INIT && context->frecv && context->fsend && !context->plugins;
    if (fits) {
        fits = table->registerPlugin(context, attachProbe, room) == SOAP_OK &&
               table->lookupPlugin(context, kProbe) == room;
        table->destroy(context);
        table->end(context);
        table->done(context);
    }
    for (size_t i = 0; i < BEYOND_CONTEXT; ++i) {
        fits = fits && room[sizeof *context + i] == MARK;
    }
    return fits;
}

/* The module and the plug-in handle one context, so both need the engine of one release, compiled
 * with the same macros. Better noticed here than by a crash. */
static int checkEngine(const struct apache_soap_interface* table, const struct soapLibrary* library,
                       server_rec* server) {
    char* room = malloc(sizeof(struct soap) + BEYOND_CONTEXT);
    const int fits = room && fitsEngine(table, room);
    free(room);
    return fits ? 1
                : refuse(server, library,
                         "its SOAP engine lays out a context in another way than this module's; "
                         "build both with the flags of one engine package");
}

int soapLoadLibrary(struct soapLibrary* library, apr_pool_t* pool, server_rec* server) {
    /* The server reads its configuration twice at start and again at each graceful restart. A
     * plug-in has thread-local data and objects that live until exit, so it is never unmapped. */
    void* handle = dlopen(library->path, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (!handle) {
        return refuse(server, library, dlerror());
    }
    void* symbol = dlsym(handle, APACHE_SOAP_ENTRY);
    if (!symbol) {
        return refuse(server, library, "it does not export " APACHE_SOAP_ENTRY);
    }
    apache_soap_entry* fillTable;
    memcpy(&fillTable, &symbol, sizeof fillTable); /* ISO C has no cast from object to function */
    union tableRoom* room = apr_pcalloc(pool, sizeof *room);
    fillTable(&room->table);
    if (!acceptTable(&room->table, library, server) ||
        !checkEngine(&room->table, library, server)) {
        return 0;
    }
    library->table = &room->table;
    return 1;
}
