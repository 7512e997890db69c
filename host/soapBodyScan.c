/* A machine of states that runs over the bytes of a body; see the header for what it is for. */
#include "host/include/soapBodyScan.h"

#include <string.h>

enum State {
    IN_TEXT,
    AFTER_LESS,      /* < */
    AFTER_BANG,      /* <! */
    AFTER_DASH,      /* <!- */
    IN_CDATA_WORD,   /* <![ and part of CDATA[ */
    IN_CDATA,        /* the section */
    CDATA_BRACKET,   /* ] in it */
    CDATA_BRACKETS,  /* ]] in it */
    IN_COMMENT,      /* the comment */
    COMMENT_DASH,    /* - in it */
    COMMENT_DASHES,  /* -- in it */
    IN_INSTRUCTION,  /* <? */
    INSTRUCTION_END, /* ? in it */
    IN_END_TAG,      /* </ */
    IN_TAG_NAME,     /* < and a letter */
    IN_TAG,          /* between attributes */
    AFTER_SLASH,     /* / in a start tag */
    IN_NAME,         /* of an attribute */
    AFTER_NAME,      /* blanks before its = */
    AFTER_EQUALS,    /* blanks before its value */
    IN_VALUE         /* within quotes */
};

static const char kNotMarkup[] = "The request body has markup that is not XML.";
static const char kCdataWord[] = "CDATA[";

static int isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/* Every byte beyond ASCII counts as part of a name; the engine decides whether it may be one. */
static int startsName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
           (unsigned char)c >= 0x80;
}

void soapStartScan(struct soapBodyScan* scan) {
    /* The names' room is large and needs no clearing: their count says how many are there. */
    memset(scan, 0, offsetof(struct soapBodyScan, name));
    scan->state = IN_TEXT;
}

static int refuse(struct soapBodyScan* scan, const char* reason) {
    scan->refusal = reason;
    return scan->state;
}

static int isKnownName(const struct soapBodyScan* scan) {
    for (unsigned i = 0; i < scan->nameCount; ++i) {
        if (scan->nameSizes[i] == scan->nameSize &&
            memcmp(scan->names[i], scan->name, scan->nameSize) == 0) {
            return 1;
        }
    }
    return 0;
}

static int declaresNamespace(const struct soapBodyScan* scan) {
    const size_t prefix = sizeof "xmlns" - 1;
    return scan->nameSize >= prefix && memcmp(scan->name, "xmlns", prefix) == 0 &&
           (scan->nameSize == prefix || scan->name[prefix] == ':');
}

/* The name of an attribute is whole. */
static void countAttribute(struct soapBodyScan* scan) {
    if (++scan->tagAttributes > kSoapMaxAttributesOfTag) {
        scan->refusal = "An element of the request body has too many attributes.";
    } else if (declaresNamespace(scan)) {
        ++scan->tagNamespaces;
        if (++scan->namespaces > kSoapMaxNamespacesInScope) {
            scan->refusal = "The request body declares too many namespaces.";
        }
    } else if (!isKnownName(scan)) {
        if (scan->nameCount == kSoapMaxAttributeNames) {
            scan->refusal = "The request body has too many different attributes.";
        } else {
            memcpy(scan->names[scan->nameCount], scan->name, scan->nameSize);
            scan->nameSizes[scan->nameCount++] = (uint8_t)scan->nameSize;
        }
    }
}

static int beginTag(struct soapBodyScan* scan) {
    scan->tagAttributes = scan->tagNamespaces = 0;
    return IN_TAG_NAME;
}

static int openElement(struct soapBodyScan* scan) {
    if (scan->level == kSoapMaxLevels) {
        return refuse(scan, "The elements of the request body are nested too deep.");
    }
    scan->namespacesAt[scan->level++] = (uint8_t)scan->tagNamespaces;
    return IN_TEXT;
}

static int closeElement(struct soapBodyScan* scan) {
    if (scan->level > 0) {
        scan->namespaces -= scan->namespacesAt[--scan->level];
    }
    return IN_TEXT;
}

static int endEmptyElement(struct soapBodyScan* scan) {
    /* An empty element counts as a level too, although it ends at once. */
    const int next = openElement(scan);
    return scan->refusal ? next : closeElement(scan);
}

static int afterLess(struct soapBodyScan* scan, char c) {
    switch (c) {
        case '!':
            return AFTER_BANG;
        case '?':
            return IN_INSTRUCTION;
        case '/':
            return IN_END_TAG;
        default:
            return startsName(c) ? beginTag(scan) : refuse(scan, kNotMarkup);
    }
}

static int afterBang(struct soapBodyScan* scan, char c) {
    scan->nameSize = 0;
    if (c == '[') {
        return IN_CDATA_WORD;
    }
    return c == '-' ? AFTER_DASH : refuse(scan, "A SOAP request has no document type declaration.");
}

static int beginName(struct soapBodyScan* scan, char c) {
    scan->name[0] = c;
    scan->nameSize = 1;
    return startsName(c) ? IN_NAME : refuse(scan, kNotMarkup);
}

static int inTag(struct soapBodyScan* scan, char c) {
    if (isBlank(c)) {
        return IN_TAG;
    }
    if (c == '>') {
        return openElement(scan);
    }
    return c == '/' ? AFTER_SLASH : beginName(scan, c);
}

static int inTagName(struct soapBodyScan* scan, char c) {
    const int ends = isBlank(c) || c == '>' || c == '/';
    if (ends) {
        return inTag(scan, c);
    }
    return c == '<' || c == '=' || c == '"' || c == '\'' ? refuse(scan, kNotMarkup) : IN_TAG_NAME;
}

static int inName(struct soapBodyScan* scan, char c) {
    if (c == '=' || isBlank(c)) {
        countAttribute(scan);
        return c == '=' ? AFTER_EQUALS : AFTER_NAME;
    }
    if (c == '<' || c == '>' || c == '/' || c == '"' || c == '\'') {
        return refuse(scan, kNotMarkup);
    }
    if (scan->nameSize == kSoapMaxAttributeNameBytes) {
        return refuse(scan, "An attribute of the request body has too long a name.");
    }
    scan->name[scan->nameSize++] = c;
    return IN_NAME;
}

static int afterName(struct soapBodyScan* scan, char c) {
    if (isBlank(c)) {
        return AFTER_NAME;
    }
    return c == '=' ? AFTER_EQUALS : refuse(scan, kNotMarkup);
}

static int afterEquals(struct soapBodyScan* scan, char c) {
    if (isBlank(c)) {
        return AFTER_EQUALS;
    }
    scan->quote = c;
    return c == '"' || c == '\'' ? IN_VALUE : refuse(scan, kNotMarkup);
}

static int inValue(struct soapBodyScan* scan, char c) {
    if (c == '<') {
        return refuse(scan, kNotMarkup);
    }
    return c == scan->quote ? IN_TAG : IN_VALUE;
}

static int inCdataWord(struct soapBodyScan* scan, char c) {
    if (c != kCdataWord[scan->nameSize++]) {
        return refuse(scan, kNotMarkup);
    }
    return kCdataWord[scan->nameSize] ? IN_CDATA_WORD : IN_CDATA;
}

/* One byte; gives the state after it. */
static int step(struct soapBodyScan* scan, char c) {
    switch ((enum State)scan->state) {
        case IN_TEXT:
            return c == '<' ? AFTER_LESS : IN_TEXT;
        case AFTER_LESS:
            return afterLess(scan, c);
        case AFTER_BANG:
            return afterBang(scan, c);
        case AFTER_DASH:
            return c == '-' ? IN_COMMENT : refuse(scan, kNotMarkup);
        case IN_CDATA_WORD:
            return inCdataWord(scan, c);
        case IN_CDATA:
            return c == ']' ? CDATA_BRACKET : IN_CDATA;
        case CDATA_BRACKET:
            return c == ']' ? CDATA_BRACKETS : IN_CDATA;
        case CDATA_BRACKETS:
            if (c == ']') {
                return CDATA_BRACKETS;
            }
            return c == '>' ? IN_TEXT : IN_CDATA;
        case IN_COMMENT:
            return c == '-' ? COMMENT_DASH : IN_COMMENT;
        case COMMENT_DASH:
            return c == '-' ? COMMENT_DASHES : IN_COMMENT;
        case COMMENT_DASHES:
            return c == '>' ? IN_TEXT : refuse(scan, kNotMarkup);
        case IN_INSTRUCTION:
            return c == '?' ? INSTRUCTION_END : IN_INSTRUCTION;
        case INSTRUCTION_END:
            return c == '>' ? IN_TEXT : refuse(scan, kNotMarkup);
        case IN_END_TAG:
            if (c == '<') {
                return refuse(scan, kNotMarkup);
            }
            return c == '>' ? closeElement(scan) : IN_END_TAG;
        case IN_TAG_NAME:
            return inTagName(scan, c);
        case IN_TAG:
            return inTag(scan, c);
        case AFTER_SLASH:
            return c == '>' ? endEmptyElement(scan) : refuse(scan, kNotMarkup);
        case IN_NAME:
            return inName(scan, c);
        case AFTER_NAME:
            return afterName(scan, c);
        case AFTER_EQUALS:
            return afterEquals(scan, c);
        case IN_VALUE:
            return inValue(scan, c);
    }
    return refuse(scan, kNotMarkup);
}

/* The bytes that can end a state in which most bytes mean nothing. */
static const char kEnds[256] = {
    ['<'] = 1,  ['>'] = 1,  ['/'] = 1,  ['='] = 1, ['"'] = 1, ['\''] = 1, [' '] = 1,
    ['\t'] = 1, ['\r'] = 1, ['\n'] = 1, [']'] = 1, ['-'] = 1, ['?'] = 1};

/* Passes over bytes that leave the state as it is: nearly all of a body. */
static const char* skip(const struct soapBodyScan* scan, const char* data, const char* end) {
    const char* found;
    switch (scan->state) {
        case IN_TEXT:
            found = memchr(data, '<', (size_t)(end - data));
            return found ? found : end;
        case IN_VALUE:
            while (data < end && *data != scan->quote && *data != '<') {
                ++data;
            }
            return data;
        case IN_TAG_NAME:
        case IN_END_TAG:
        case IN_CDATA:
        case IN_COMMENT:
        case IN_INSTRUCTION:
            while (data < end && !kEnds[(unsigned char)*data]) {
                ++data;
            }
            return data;
        default:
            return data;
    }
}

const char* soapScan(struct soapBodyScan* scan, const char* data, size_t size) {
    const char* const end = data + size;
    while (!scan->refusal && (data = skip(scan, data, end)) < end) {
        scan->state = step(scan, *data++);
    }
    return scan->refusal;
}
