/*
 * The table of functions by which a SOAP plug-in and the web server's module meet.
 *
 * A plug-in is a shared object that exports `apache_init_soap_interface`. The module loads it
 * once, lets it fill the table, and from then on uses the engine through the table alone: it
 * links no engine library of its own, so that a context is always handled by the code that
 * laid it out.
 *
 *     void apache_init_soap_interface(struct apache_soap_interface *table)
 *     {
 *         table->length = sizeof *table;
 *         table->revision = APACHE_SOAP_REVISION;
 *         table->serve = serveOneRequest;
 *         ...
 *     }
 *
 * The table belongs to the module and lives as long as the server's configuration. What its
 * pointers point to belongs to the plug-in, which stays mapped until the process ends.
 *
 * Plain C, and the layout is part of the interface: it is checked below, and both sides have
 * to be compiled with the engine's macros of `pkg-config --cflags gsoapssl++`.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>
#include <stdsoap2.h>

#ifdef __cplusplus
#define SOAP_TABLE_CHECK(condition) static_assert(condition, #condition)
extern "C" {
#else
#define SOAP_TABLE_CHECK(condition) _Static_assert(condition, #condition)
#endif

/* The one revision of the table that exists, and its length in bytes. */
#define APACHE_SOAP_REVISION 6u
#define APACHE_SOAP_LENGTH 184u

/* The name of the exported entry, for the look-up in a shared object. */
#define APACHE_SOAP_ENTRY "apache_init_soap_interface"

struct apache_soap_interface {
    uint32_t length;   /* of the table in bytes */
    uint32_t revision; /* of the interface that the plug-in was built for */

    /* A context's life: set up, serve one request, free what was allocated, take down. */
    void (*init)(struct soap*);
    int (*serve)(struct soap*); /* gives the engine's status, 0 for success */
    void (*destroy)(struct soap*);
    void (*end)(struct soap*);
    void (*done)(struct soap*);

    /* Data that the module hangs on a context (see soapRequestConf.h). */
    int (*registerPlugin)(struct soap*, int (*create)(struct soap*, struct soap_plugin*, void*),
                          void*);
    void* (*lookupPlugin)(struct soap*, const char*);
    void* reserved; /* always null */

    const struct Namespace* namespaces;

    /* The generated functions for header, fault and elements. */
    void (*serializeHeader)(struct soap*);
    int (*putHeader)(struct soap*);
    int (*getHeader)(struct soap*);
    void (*fault)(struct soap*);
    void (*serializeFault)(struct soap*);
    int (*putFault)(struct soap*);
    int (*getFault)(struct soap*);
    const char** (*faultCode)(struct soap*);
    const char** (*faultString)(struct soap*);
    const char** (*faultDetail)(struct soap*);
    void (*markElement)(struct soap*, const void*, int);
    int (*putElement)(struct soap*, const void*, const char*, int, int);
    void* (*getElement)(struct soap*, const char*, int*);
};

#define SOAP_TABLE_OFFSET(member, offset) \
    SOAP_TABLE_CHECK(offsetof(struct apache_soap_interface, member) == (offset))

SOAP_TABLE_CHECK(sizeof(struct apache_soap_interface) == APACHE_SOAP_LENGTH);
SOAP_TABLE_OFFSET(length, 0);
SOAP_TABLE_OFFSET(revision, 4);
SOAP_TABLE_OFFSET(init, 8);
SOAP_TABLE_OFFSET(serve, 16);
SOAP_TABLE_OFFSET(destroy, 24);
SOAP_TABLE_OFFSET(end, 32);
SOAP_TABLE_OFFSET(done, 40);
SOAP_TABLE_OFFSET(registerPlugin, 48);
SOAP_TABLE_OFFSET(lookupPlugin, 56);
SOAP_TABLE_OFFSET(reserved, 64);
SOAP_TABLE_OFFSET(namespaces, 72);
SOAP_TABLE_OFFSET(serializeHeader, 80);
SOAP_TABLE_OFFSET(putHeader, 88);
SOAP_TABLE_OFFSET(getHeader, 96);
SOAP_TABLE_OFFSET(fault, 104);
SOAP_TABLE_OFFSET(serializeFault, 112);
SOAP_TABLE_OFFSET(putFault, 120);
SOAP_TABLE_OFFSET(getFault, 128);
SOAP_TABLE_OFFSET(faultCode, 136);
SOAP_TABLE_OFFSET(faultString, 144);
SOAP_TABLE_OFFSET(faultDetail, 152);
SOAP_TABLE_OFFSET(markElement, 160);
SOAP_TABLE_OFFSET(putElement, 168);
SOAP_TABLE_OFFSET(getElement, 176);

/* What the shared object's entry looks like. It can be called more than once. */
typedef void apache_soap_entry(struct apache_soap_interface*);

#ifdef __cplusplus
}
#endif
