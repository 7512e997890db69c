/* Takes a plug-in into use. */
#include "host/modGsoap.h"

#include <ap_mpm.h>
#include <apr_strings.h>
#include <http_log.h>

#include "host/soapPlugin.h"

#define RETAINED "mod_gsoap plug-in "

/* What is wrong with the plug-in, from one look on. */
static const char* lookFrom(const struct soapPluginLook* next, struct soapPlugin* plugin) {
    const char* reason = NULL;
    for (; next->subject && !reason; ++next) {
        reason = next->look(plugin);
    }
    return reason;
}

/* A plug-in is never unmapped, so at a graceful restart the one of before is still there. Without
 * one the whole server would end. */
int soapLoadLibrary(struct soapLibrary* library, apr_pool_t* pool, server_rec* server) {
    struct soapPlugin* plugin = apr_pcalloc(pool, sizeof *plugin);
    const char* key = apr_pstrcat(pool, RETAINED, library->path, NULL);
    void** former = ap_retained_data_get(key);
    plugin->path = library->path;
    const char* reason = lookFrom(kSoapPluginLooks, plugin);
    if (reason) {
        ap_log_error(APLOG_MARK, APLOG_EMERG, 0, server, "SOAPLibrary %s: %s", library->path,
                     reason);
        if (!former) {
            return 0;
        }
        plugin->handle = *former;
        if (lookFrom(kSoapPluginLooks + 1, plugin)) { /* all but loading it */
            return 0;
        }
        ap_log_error(APLOG_MARK, APLOG_ALERT, 0, server,
                     "SOAPLibrary %s: the plug-in that was loaded before serves on; once the file "
                     "is right, stop and start the server",
                     library->path);
    }
    if (!former) {
        former = ap_retained_data_create(key, sizeof *former);
    }
    *former = plugin->handle;
    library->table = &plugin->room.table;
    return 1;
}
