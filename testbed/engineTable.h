#pragma once
// Fills the plug-in's interface table with the engine's own functions, for plug-ins that stand
// beside the service: what the benchmarks compare with, and what the module's tests load.
#include "host/include/soapInterface.h"

/// The table as the module wants it; a test spoils what it wants refused.
inline void fillEngineTable(apache_soap_interface& table, int (*serve)(struct soap*)) {
    table = {};
    table.length = APACHE_SOAP_LENGTH;
    table.revision = APACHE_SOAP_REVISION;
    table.init = [](struct soap* context) { soap_init2(context, 0, 0); };
    table.serve = serve;
    table.destroy = [](struct soap* context) { soap_delete(context, nullptr); };
    table.end = soap_end;
    table.done = soap_done;
    table.registerPlugin = soap_register_plugin_arg;
    table.lookupPlugin = soap_lookup_plugin;
    table.namespaces = namespaces;
}

/// Marks the entry by which the module finds a plug-in.
#define PLUGIN_ENTRY extern "C" __attribute__((visibility("default")))
