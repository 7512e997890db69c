/*
 * A look at a request body before the engine parses it.
 *
 * What the engine spends on some shapes of XML grows with the square of their size: on attributes,
 * on namespaces, on levels. This scan refuses what no client sends, at the price of one pass. It
 * is no parser: what it lets pass may still be wrong in many ways, and the engine says so. But it
 * sees the same tags that the engine sees, and refuses markup that the two could read differently.
 *
 *     struct soapBodyScan scan;
 *     soapStartScan(&scan, &kSoapModuleRules);
 *     while (more)
 *         if (soapScan(&scan, piece, size)) ... refuse, with soapScan's text
 *
 * Both the web server's module and a plug-in use it, each by itself, so that neither relies on the
 * other: it is plain C, allocates nothing and needs no library. A scan belongs to whoever declared
 * it; it is about 3 KiB and can lie on the stack.
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
    kSoapMaxAttributes = 4096,       /* in the whole body, where the rules ask */
    kSoapMaxAttributeNames = 24,     /* different ones in the whole body, namespaces left out */
    kSoapMaxNamespacesInScope = 48,  /* declared by an element and those around it */
    kSoapMaxAttributesOfTag = 64,    /* namespaces included */
    kSoapMaxAttributeNameBytes = 120 /* prefix included */
};

/* What each refusal says, of static storage, and which rules there are besides. */
struct soapScanRules {
    const char* markup;
    const char* documentType;
    const char* levels;
    const char* attributesOfTag;
    const char* attributeNames;
    const char* attributeName; /* too long a one */
    const char* namespaces;
    const char* attributes; /* in the whole body; null: as many as like */
    /* Whether a document may hold this character. Null: references are not looked at. Otherwise
     * they stand in texts and values alone, and are those of XML. */
    int (*allowsCharacter)(uint32_t codePoint);
    const char* character;
    const char* entity; /* one that nobody defined */
};

/* The module's: a reference is no matter of the gate. */
extern const struct soapScanRules kSoapModuleRules;

/* Private to the scan; only its size matters outside. */
struct soapBodyScan {
    const char* refusal; /* once set, it stays */
    const struct soapScanRules* rules;
    int state;
    int outside; /* the state that a reference came up in */
    char quote;  /* the one that ends the attribute's value */
    char mark;   /* & where references are looked at, else < */
    unsigned level;
    unsigned attributes;
    unsigned tagAttributes;
    unsigned tagNamespaces;
    unsigned namespaces; /* in scope */
    unsigned nameCount;
    unsigned lastName;  /* where the last one was found */
    unsigned nameSize;  /* of the attribute's name or the reference's that is being read */
    uint32_t codePoint; /* of the reference */
    char name[kSoapMaxAttributeNameBytes + 1];
    uint8_t namespacesAt[kSoapMaxLevels + 1]; /* that the open element of this level declared */
    uint8_t nameSizes[kSoapMaxAttributeNames];
    char names[kSoapMaxAttributeNames][kSoapMaxAttributeNameBytes + 1];
};

/* Makes a scan ready for the first byte of a body. */
void soapStartScan(struct soapBodyScan* scan, const struct soapScanRules* rules);

/* Takes the next `size` bytes of the body. Gives null, or why the body is refused, one of the
 * rules' texts; after a refusal every call gives the same. A body that ends in the middle of
 * something is not refused: the engine notices. */
const char* soapScan(struct soapBodyScan* scan, const char* data, size_t size);

#ifdef __cplusplus
}
#endif
