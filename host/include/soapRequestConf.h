/*
 * What the module tells a plug-in about the request that it serves.
 *
 * The module hangs it on the context under the name below; a plug-in finds it with
 *
 *     struct soapRequestConf *conf = context->fplugin(context, SOAP_REQUEST_CONF_ID);
 *     if (conf && conf->r && conf->r->connection) ...
 *
 * It belongs to the module and is valid until the serve function returns. Modules of the same
 * interface have other members behind the first; a plug-in relies on the first alone.
 */
#pragma once

#include <httpd.h>

#define SOAP_REQUEST_CONF_ID "Apache 2.0 mod_gsoap gsoap httpd extension 0.0.8"

struct soapRequestConf {
    request_rec* r; /* owned by the web server, never null while a request is served */
};
