/*
 * A look at a request body before the engine parses it.
 *
 * What the engine spends on some shapes of XML grows with the square of their size: on attributes,
 * on namespaces, on levels. This scan refuses what no client sends, at the price of one pass. It
 * is no parser: what it lets pass may still be wrong in many ways, and the engine says so. But it
 * sees the same tags that the engine sees, and refuses markup that the two could read differently.
 *
 *     struct soapBodyScan scan;
 *     soapStartScan(&scan);
 *     while (more)
 *         if (soapScan(&scan, piece, size)) ... refuse, with soapScan's text
 *
 * Both the web server's module and a plug-in can use it: it is plain C, allocates nothing and needs
 * no library. A scan belongs to whoever declared it; it is about 5 KiB and can lie on the stack.
 */
#pragma once

#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What a body may hold. A large request of the service has fewer than ten levels and names of
 * attributes. */
enum {
    kSoapMaxLevels = 64,             /* elements within each other */
    kSoapMaxAttributeNames = 24,     /* different ones in the whole body, namespaces left out */
    kSoapMaxNamespacesInScope = 48,  /* declared by an element and those around it */
    kSoapMaxAttributesOfTag = 64,    /* namespaces included */
    kSoapMaxAttributeNameBytes = 120 /* prefix included */
};

/* Private to the scan; only its size matters outside. */
struct soapBodyScan {
    const char* refusal; /* once set, it stays */
    int state;
    char quote; /* the one that ends the attribute's value */
    unsigned level;
    unsigned tagAttributes;
    unsigned tagNamespaces;
    unsigned namespaces; /* in scope */
    unsigned nameCount;
    unsigned nameSize; /* of the attribute's name that is being read */
    char name[kSoapMaxAttributeNameBytes + 1];
    uint8_t namespacesAt[kSoapMaxLevels + 1]; /* that the open element of this level declared */
    uint8_t nameSizes[kSoapMaxAttributeNames];
    char names[kSoapMaxAttributeNames][kSoapMaxAttributeNameBytes + 1];
};

/* Makes a scan ready for the first byte of a body. */
void soapStartScan(struct soapBodyScan* scan);

/* Takes the next `size` bytes of the body. Gives null, or why the body is refused, a sentence of
 * static storage; after a refusal every call gives the same. A body that ends in the middle of
 * something is not refused: the engine notices. */
const char* soapScan(struct soapBodyScan* scan, const char* data, size_t size);

#ifdef __cplusplus
}
#endif
