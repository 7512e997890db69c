// The bare service as a plug-in, hosted by the web server's module as the service is.
#include "bench/bareService.h"
#include "testbed/engineTable.h"

PLUGIN_ENTRY void apache_init_soap_interface(apache_soap_interface* table) {
    fillEngineTable(*table,
                    [](struct soap* context) { return bare::BareService(*context).serve(); });
}
