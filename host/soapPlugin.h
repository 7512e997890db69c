/*
 * What can be told of a plug-in without a web server, and how a context is made ready for it. The
 * module uses it for the plug-ins of its configuration, sanPluginCheck for the one that it is
 * given.
 */
#pragma once

#include "host/include/soapInterface.h"

#ifdef __cplusplus
extern "C" {
#endif

enum { kSoapLongestTable = 16 * APACHE_SOAP_LENGTH, kSoapPluginWords = 1024 };

/* Room for a table that is longer than the one known here: a plug-in of another release then
 * is refused for the length that it reports, and has written over nothing. */
union soapTableRoom {
    struct apache_soap_interface table;
    char room[kSoapLongestTable];
};

/* A plug-in that is being looked at; all zero but for its path at first. */
struct soapPlugin {
    const char* path;
    void* handle;
    union soapTableRoom room;
    char words[kSoapPluginWords];
};

/* A look at a plug-in. Gives null, or why the plug-in cannot be used; the text lives until the next
 * look. Each one relies on those before it. */
struct soapPluginLook {
    const char* subject; /* null behind the last */
    const char* fine;    /* what there is to say when it is so */
    const char* (*look)(struct soapPlugin*);
};

/* All of them, in their order. The plug-in stays mapped until the process ends. */
extern const struct soapPluginLook kSoapPluginLooks[];

/* Sets up a context that reads and writes through the two functions, and touches neither a socket
 * nor an HTTP header. */
void soapSetUpContext(struct soap* context, const struct apache_soap_interface* table,
                      size_t (*receive)(struct soap*, char*, size_t),
                      int (*sendReply)(struct soap*, const char*, size_t));

/* Hangs data on a context, and on each copy of it, where a plug-in finds it under this name. The
 * data stays the caller's. Gives the engine's status. */
int soapAttach(struct soap* context, const struct apache_soap_interface* table, const char* id,
               void* data);

#ifdef __cplusplus
}
#endif
