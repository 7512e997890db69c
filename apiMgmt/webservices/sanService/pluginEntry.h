#pragma once

#include "host/include/soapInterface.h"

#define SAN_EXPORT __attribute__((visibility("default")))

// What the plug-in exports. Names are plain C names, as the web server's module looks for them.
extern "C" {

/// Fills @p table, which the module owns, and sets up what a process needs once. May be called more
/// than once; a module calls it where the server starts, before there are others to serve.
SAN_EXPORT void apache_init_soap_interface(struct apache_soap_interface* table);

// The engine's calls behind the table's slots; each forwards its arguments and no more.
SAN_EXPORT void apache_default_soap_init(struct soap* soap);
SAN_EXPORT void apache_soap_soap_destroy(struct soap* soap);
SAN_EXPORT void apache_default_soap_end(struct soap* soap);
SAN_EXPORT void apache_default_soap_done(struct soap* soap);
SAN_EXPORT int apache_default_soap_register_plugin_arg(
    struct soap* soap, int (*create)(struct soap*, struct soap_plugin*, void*), void* arg);
SAN_EXPORT void* apache_default_soap_lookup_plugin(struct soap* soap, const char* id);
}

/// Serves one request on the module's context. @return what the engine's serve() gave.
/// Exceptions pass; in practice SANService::dispatch lets none out.
int SANServiceHandler(struct soap* ctx);
