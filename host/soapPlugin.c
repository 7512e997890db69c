/* Loads a plug-in, judges the table that it fills, and makes contexts ready for it. */
#include "host/soapPlugin.h"

#include <dlfcn.h>
#include <limits.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>

#define MARK '\x5A'
#define BEYOND_CONTEXT 4096
#define IDENTITY_BITS 64
#define DEVICE_SHIFT 48

static const char kProbe[] = "mod_gsoap probe";

/* Data on its way to a context. */
struct attachment {
    const char* id;
    void* data;
};

static int copyAttached(struct soap* context, struct soap_plugin* target,
                        struct soap_plugin* source) {
    (void)context;
    target->data = source->data;
    return SOAP_OK;
}

/* Runs for the context and for each copy of it; the data is not theirs. */
static void forgetAttached(struct soap* context, struct soap_plugin* plugin) {
    (void)context;
    plugin->data = NULL;
}

static int attach(struct soap* context, struct soap_plugin* plugin, void* argument) {
    const struct attachment* attached = argument;
    (void)context;
    plugin->id = attached->id;
    plugin->data = attached->data;
    plugin->fcopy = copyAttached;
    plugin->fdelete = forgetAttached;
    return SOAP_OK;
}

int soapAttach(struct soap* context, const struct apache_soap_interface* table, const char* id,
               void* data) {
    struct attachment attached = {id, data};
    return table->registerPlugin(context, attach, &attached);
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

void soapSetUpContext(struct soap* context, const struct apache_soap_interface* table,
                      size_t (*receive)(struct soap*, char*, size_t),
                      int (*sendReply)(struct soap*, const char*, size_t)) {
    table->init(context);
    context->namespaces = table->namespaces;
    context->frecv = receive;
    context->fsend = sendReply;
    context->fresponse = ignoreStatus;
    context->fposthdr = ignoreHeader;
    context->fparse = refuseHttp;
    context->fpoll = leaveConnection;
    context->fclose = leaveConnection;
}

/* Another way to write a path, of its own for each file that ever is there: a "/." in front for
 * each bit of the file's identity that is set, and a "/" for the others. A path that is not
 * absolute stays as it is. Gives how much was put in front. */
static size_t nameFile(const char* path, char* name, size_t size) {
    struct stat file;
    size_t length = 0;
    if (path[0] == '/' && stat(path, &file) == 0) {
        const uint64_t identity = (uint64_t)file.st_ino ^ ((uint64_t)file.st_dev << DEVICE_SHIFT);
        for (int bit = 0; bit < IDENTITY_BITS; ++bit) {
            name[length++] = '/';
            if (identity >> bit & 1) {
                name[length++] = '.';
            }
        }
    }
    snprintf(name + length, size - length, "%s", path);
    return length;
}

static const char* load(struct soapPlugin* plugin) {
    char name[2 * IDENTITY_BITS + PATH_MAX];
    const size_t before = nameFile(plugin->path, name, sizeof name);
    /* The server reads its configuration twice at start and again at each graceful restart. A
     * plug-in has thread-local data and objects that live until exit, so it is never unmapped. The
     * loader takes the name for the file: under the same one, what took a plug-in's place would not
     * be loaded. The same file under another name is loaded once all the same. */
    plugin->handle = dlopen(name, RTLD_NOW | RTLD_LOCAL | RTLD_NODELETE);
    if (plugin->handle) {
        return NULL;
    }
    const char* reason = dlerror();
    return strncmp(reason, name, before) == 0 ? reason + before : reason;
}

static const char* askForTable(struct soapPlugin* plugin) {
    void* symbol = dlsym(plugin->handle, APACHE_SOAP_ENTRY);
    if (!symbol) {
        return "it does not export " APACHE_SOAP_ENTRY;
    }
    apache_soap_entry* fillTable;
    memcpy(&fillTable, &symbol, sizeof fillTable); /* ISO C has no cast from object to function */
    fillTable(&plugin->room.table);
    return NULL;
}

static const char* judgeRevision(struct soapPlugin* plugin) {
    const struct apache_soap_interface* table = &plugin->room.table;
    if (table->length == APACHE_SOAP_LENGTH && table->revision == APACHE_SOAP_REVISION) {
        return NULL;
    }
    snprintf(plugin->words, sizeof plugin->words,
             "its interface table has length %u and revision %u; "
             "this module knows length %u and revision %u only",
             table->length, table->revision, APACHE_SOAP_LENGTH, APACHE_SOAP_REVISION);
    return plugin->words;
}

static const char* judgeReserved(struct soapPlugin* plugin) {
    return plugin->room.table.reserved ? "the reserved slot of its interface table is not null"
                                       : NULL;
}

static const char* judgeFunctions(struct soapPlugin* plugin) {
    const struct apache_soap_interface* table = &plugin->room.table;
    return table->init && table->serve && table->destroy && table->end && table->done &&
                   table->registerPlugin && table->lookupPlugin && table->namespaces
               ? NULL
               : "its interface table lacks functions that are needed";
}

/* Sets up a context in a room whose end is marked, and looks at it as the module lays it out. */
static int fitsEngine(const struct apache_soap_interface* table, char* room) {
    struct soap* context = (struct soap*)(void*)room;
    memset(room, MARK, sizeof *context + BEYOND_CONTEXT);
    table->init(context);
    int fits = context->state == SOAP_INIT && context->frecv && context->fsend && !context->plugins;
    if (fits) {
        fits = soapAttach(context, table, kProbe, room) == SOAP_OK &&
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
static const char* judgeEngine(struct soapPlugin* plugin) {
    char* room = malloc(sizeof(struct soap) + BEYOND_CONTEXT);
    const int fits = room && fitsEngine(&plugin->room.table, room);
    free(room);
    return fits ? NULL
                : "its SOAP engine lays out a context in another way than this module's; "
                  "build both with the flags of one engine package";
}

const struct soapPluginLook kSoapPluginLooks[] = {
    {"Loading", "every symbol is found", load},
    {"Entry", APACHE_SOAP_ENTRY " is exported", askForTable},
    {"Length and revision", "those that the module knows", judgeRevision},
    {"Reserved slot", "null", judgeReserved},
    {"Functions", "all that the module calls", judgeFunctions},
    {"Context of the engine", "laid out as the module's", judgeEngine},
    {NULL, NULL, NULL}};
