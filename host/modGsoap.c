/* Directives and hooks of the module; docs/module.md is their reference page. */
#include "host/modGsoap.h"
#include "host/soapStatus.h"

#include <ap_expr.h>
#include <ap_mpm.h>
#include <apr_strings.h>
#include <http_core.h>
#include <http_log.h>
#include <http_request.h>
#include <limits.h>
#include <mod_status.h>
#include <stdlib.h>

#define DEFAULT_PING_SECONDS 5
#define MAX_PING_SECONDS 300

/* The plug-ins that the configuration being read names, so that one that serves several
 * locations is loaded once. Written while the server starts, single-threaded, only. */
static apr_array_header_t* libraries;
/* The sections that name them, likewise. */
static apr_array_header_t* services;

static int beginConfiguration(apr_pool_t* pconf, apr_pool_t* plog, apr_pool_t* ptemp) {
    (void)plog;
    (void)ptemp;
    libraries = apr_array_make(pconf, 1, sizeof(struct soapLibrary*));
    services = apr_array_make(pconf, 1, sizeof(struct soapService*));
    return OK;
}

static struct soapLibrary* findOrAddLibrary(apr_pool_t* pool, const char* path) {
    for (int i = 0; i < libraries->nelts; ++i) {
        struct soapLibrary* known = APR_ARRAY_IDX(libraries, i, struct soapLibrary*);
        if (strcmp(known->path, path) == 0) {
            return known;
        }
    }
    struct soapLibrary* library = apr_pcalloc(pool, sizeof *library);
    library->path = path;
    APR_ARRAY_PUSH(libraries, struct soapLibrary*) = library;
    return library;
}

const apr_array_header_t* soapConfiguredServices(void) {
    return services;
}

/* The service of the section that holds the directive. */
static struct soapService* findOrAddService(const cmd_parms* cmd) {
    const char* path = cmd->path ? cmd->path : "server";
    for (int i = 0; i < services->nelts; ++i) {
        struct soapService* known = APR_ARRAY_IDX(services, i, struct soapService*);
        if (strcmp(known->path, path) == 0) {
            return known;
        }
    }
    struct soapService* service = apr_pcalloc(cmd->pool, sizeof *service);
    service->path = path;
    APR_ARRAY_PUSH(services, struct soapService*) = service;
    return service;
}

static const char* checkFile(cmd_parms* cmd, const char* argument, const char** path) {
    apr_finfo_t info;
    *path = ap_server_root_relative(cmd->pool, argument);
    if (!*path) {
        return apr_psprintf(cmd->pool, "%s: invalid path %s", cmd->cmd->name, argument);
    }
    apr_status_t status = apr_stat(&info, *path, APR_FINFO_TYPE, cmd->temp_pool);
    if (status != APR_SUCCESS) {
        return apr_psprintf(cmd->pool, "%s: cannot use %s: %pm", cmd->cmd->name, *path,
                            (void*)&status);
    }
    if (info.filetype != APR_REG) {
        return apr_psprintf(cmd->pool, "%s: %s is not a file", cmd->cmd->name, *path);
    }
    return NULL;
}

static const char* setLibrary(cmd_parms* cmd, void* location, const char* argument) {
    const char* path;
    const char* error = checkFile(cmd, argument, &path);
    if (!error) {
        struct soapLocation* said = location;
        said->library = findOrAddLibrary(cmd->pool, path);
        said->service = findOrAddService(cmd);
        said->service->library = said->library;
    }
    return error;
}

static const char* setMaxCalls(cmd_parms* cmd, void* location, const char* argument) {
    char* end;
    const long number = strtol(argument, &end, 10);
    if (*end || end == argument || number < 0 || number > INT_MAX) {
        return apr_psprintf(cmd->pool, "%s: a number is wanted, 0 for no limit, not %s",
                            cmd->cmd->name, argument);
    }
    ((struct soapLocation*)location)->maxCalls = (int)number;
    return NULL;
}

static const char* setWsdl(cmd_parms* cmd, void* location, const char* argument) {
    const char* path;
    const char* error = checkFile(cmd, argument, &path);
    return error ? error : soapReadWsdl(&((struct soapLocation*)location)->wsdl, path, cmd->pool);
}

static const char* setPing(cmd_parms* cmd, void* location, const char* argument,
                           const char* seconds) {
    (void)location;
    const char* path;
    char* text;
    const char* error = checkFile(cmd, argument, &path);
    if (!error) {
        error = soapReadFile(path, &text, cmd->pool);
    }
    if (error) {
        return error;
    }
    struct soapService* service = findOrAddService(cmd);
    service->ping = text;
    service->pingSeconds = seconds ? atoi(seconds) : DEFAULT_PING_SECONDS;
    return service->pingSeconds > 0 && service->pingSeconds <= MAX_PING_SECONDS
               ? NULL
               : apr_psprintf(cmd->pool, "%s: from 1 to %d seconds are allowed, not %s",
                              cmd->cmd->name, MAX_PING_SECONDS, seconds);
}

/* In .htaccess files the directives are not allowed: they load code into the server. */
// clang-format off
static const command_rec kDirectives[] = {
    AP_INIT_TAKE1("SOAPLibrary", setLibrary, NULL, RSRC_CONF | ACCESS_CONF,
                  "Path of the shared object that serves SOAP requests here"),
    AP_INIT_TAKE1("SOAPWsdl", setWsdl, NULL, RSRC_CONF | ACCESS_CONF,
                  "Path of the WSDL file that a GET with the query ?wsdl returns"),
    AP_INIT_TAKE1("SOAPMaxCalls", setMaxCalls, NULL, RSRC_CONF | ACCESS_CONF,
                  "How many calls of this location run at once, in all processes; 0 for no limit"),
    AP_INIT_TAKE12("SOAPPing", setPing, NULL, RSRC_CONF | ACCESS_CONF,
                   "Path of a request for the deep health check, and how many seconds it may take"),
    {NULL, {NULL}, NULL, 0, RAW_ARGS, NULL}};
// clang-format on

static void* createLocation(apr_pool_t* pool, char* path) {
    (void)path;
    struct soapLocation* location = apr_pcalloc(pool, sizeof *location);
    location->maxCalls = -1;
    return location;
}

static void* mergeLocations(apr_pool_t* pool, void* outer, void* inner) {
    const struct soapLocation* base = outer;
    struct soapLocation* merged = apr_pmemdup(pool, inner, sizeof *merged);
    if (!merged->library) {
        merged->library = base->library;
        merged->service = base->service;
    }
    if (merged->maxCalls < 0) {
        merged->maxCalls = base->maxCalls;
    }
    if (!merged->wsdl) {
        merged->wsdl = base->wsdl;
    }
    return merged;
}

/* Checks that need the whole configuration. */
static int checkServices(server_rec* server) {
    for (int i = 0; i < services->nelts; ++i) {
        const struct soapService* service = APR_ARRAY_IDX(services, i, struct soapService*);
        if (!service->library) {
            ap_log_error(APLOG_MARK, APLOG_EMERG, 0, server,
                         "SOAPPing stands in a section without SOAPLibrary, %s", service->path);
            return HTTP_INTERNAL_SERVER_ERROR;
        }
    }
    return OK;
}

static int loadLibraries(apr_pool_t* pconf, server_rec* server) {
    for (int i = 0; i < libraries->nelts; ++i) {
        if (!soapLoadLibrary(APR_ARRAY_IDX(libraries, i, struct soapLibrary*), pconf, server)) {
            return HTTP_INTERNAL_SERVER_ERROR;
        }
    }
    return checkServices(server);
}

/* The server's own test of a configuration ends before the step that loads plug-ins, so they are
 * loaded here. */
static int testConfiguration(apr_pool_t* pconf, apr_pool_t* plog, apr_pool_t* ptemp,
                             server_rec* server) {
    (void)plog;
    (void)ptemp;
    return ap_state_query(AP_SQ_RUN_MODE) == AP_SQ_RM_CONFIG_TEST ? loadLibraries(pconf, server)
                                                                  : OK;
}

static int finishConfiguration(apr_pool_t* pconf, apr_pool_t* plog, apr_pool_t* ptemp,
                               server_rec* server) {
    (void)plog;
    (void)ptemp;
    soapOpenCounts(server);
    for (int i = 0; i < services->nelts; ++i) {
        struct soapService* service = APR_ARRAY_IDX(services, i, struct soapService*);
        service->counts = soapFindCounts(service->path);
    }
    return loadLibraries(pconf, server);
}

/* The parent gets this for each child that it sees end, however that came. */
static void noteChild(server_rec* server, pid_t pid, ap_generation_t generation, int slot,
                      mpm_child_status status) {
    (void)server;
    (void)generation;
    (void)slot;
    if (status == MPM_CHILD_EXITED) {
        soapForgetProcess(pid);
    }
}

/* The handler that SetHandler gives a request; known before the server itself looks for it. */
static const char* configuredHandler(request_rec* r) {
    const core_dir_config* core = ap_get_core_module_config(r->per_dir_config);
    const char* error = NULL;
    return core->expr_handler ? ap_expr_str_exec(r, core->expr_handler, &error) : core->handler;
}

/* The service is no file: the walk through the document root, with a look at each folder on the
 * way, would be a large part of what the server does for a small request. What the location says
 * is only known in this step, and the walk is left out in a later one. */
static int noteService(request_rec* r) {
    struct soapLocation* location = ap_get_module_config(r->per_dir_config, &gsoap_module);
    const char* handler = location->library ? configuredHandler(r) : NULL;
    if (handler && strcmp(handler, SOAP_HANDLER) == 0) {
        ap_set_module_config(r->request_config, &gsoap_module, location);
    }
    return DECLINED;
}

static int skipFiles(request_rec* r) {
    return ap_get_module_config(r->request_config, &gsoap_module) ? OK : DECLINED;
}

static apr_status_t endChild(void* data) {
    (void)data;
    for (int i = 0; i < libraries->nelts; ++i) {
        soapFreeReady(APR_ARRAY_IDX(libraries, i, struct soapLibrary*));
    }
    return APR_SUCCESS;
}

static void initChild(apr_pool_t* pool, server_rec* server) {
    (void)server;
    soapBeginProcess();
    apr_pool_cleanup_register(pool, NULL, endChild, apr_pool_cleanup_null);
}

static void registerHooks(apr_pool_t* pool) {
    (void)pool;
    ap_hook_pre_config(beginConfiguration, NULL, NULL, APR_HOOK_MIDDLE);
    ap_hook_check_config(testConfiguration, NULL, NULL, APR_HOOK_MIDDLE);
    ap_hook_post_config(finishConfiguration, NULL, NULL, APR_HOOK_MIDDLE);
    ap_hook_translate_name(noteService, NULL, NULL, APR_HOOK_REALLY_FIRST);
    ap_hook_map_to_storage(skipFiles, NULL, NULL, APR_HOOK_FIRST);
    ap_hook_child_init(initChild, NULL, NULL, APR_HOOK_MIDDLE);
    ap_hook_child_status(noteChild, NULL, NULL, APR_HOOK_MIDDLE);
    ap_hook_handler(soapHandler, NULL, NULL, APR_HOOK_MIDDLE);
    ap_hook_handler(soapStatusHandler, NULL, NULL, APR_HOOK_MIDDLE);
    APR_OPTIONAL_HOOK(ap, status_hook, soapExtendStatus, NULL, NULL, APR_HOOK_MIDDLE);
}

__attribute__((visibility("default")))
module AP_MODULE_DECLARE_DATA gsoap_module = {STANDARD20_MODULE_STUFF,
                                              createLocation,
                                              mergeLocations,
                                              NULL,
                                              NULL,
                                              kDirectives,
                                              registerHooks,
                                              0};
