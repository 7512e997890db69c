/* Takes a plug-in into use. */
#include "host/modGsoap.h"

#include <http_log.h>

#include "host/soapPlugin.h"

int soapLoadLibrary(struct soapLibrary* library, apr_pool_t* pool, server_rec* server) {
    struct soapPlugin* plugin = apr_pcalloc(pool, sizeof *plugin);
    plugin->path = library->path;
    for (const struct soapPluginLook* next = kSoapPluginLooks; next->subject; ++next) {
        const char* reason = next->look(plugin);
        if (reason) {
            ap_log_error(APLOG_MARK, APLOG_EMERG, 0, server, "SOAPLibrary %s: %s", library->path,
                         reason);
            return 0;
        }
    }
    library->table = &plugin->room.table;
    return 1;
}
