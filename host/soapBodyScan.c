/* A machine of states that runs over the bytes of a body; see the header for what it is for. */
#include "host/include/soapBodyScan.h"

#include <string.h>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

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
    IN_VALUE,        /* within quotes */
    AFTER_AND,       /* & */
    IN_ENTITY,       /* its name */
    AFTER_HASH,      /* &# */
    IN_DECIMAL,
    IN_HEXADECIMAL
};

const struct soapScanRules kSoapModuleRules = {
    .markup = "The request body has markup that is not XML.",
    .documentType = "A SOAP request has no document type declaration.",
    .levels = "The elements of the request body are nested too deep.",
    .attributesOfTag = "An element of the request body has too many attributes.",
    .attributeNames = "The request body has too many different attributes.",
    .attributeName = "An attribute of the request body has too long a name.",
    .namespaces = "The request body declares too many namespaces."};

static const char kCdataWord[] = "CDATA[";

static int isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\r' || c == '\n';
}

/* Every byte beyond ASCII counts as part of a name; the engine decides whether it may be one. */
static int startsName(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_' || c == ':' ||
           (unsigned char)c >= 0x80;
}

void soapStartScan(struct soapBodyScan* scan, const struct soapScanRules* rules) {
    /* The names' room is large and needs no clearing: their count says how many are there. */
    memset(scan, 0, offsetof(struct soapBodyScan, name));
    scan->rules = rules;
    scan->state = IN_TEXT;
    scan->mark = rules->allowsCharacter ? '&' : '<';
}

static int refuse(struct soapBodyScan* scan, const char* reason) {
    scan->refusal = reason;
    return scan->state;
}

static int refuseMarkup(struct soapBodyScan* scan) {
    return refuse(scan, scan->rules->markup);
}

/* A reference where there is no place for one. */
static int isStrayReference(const struct soapBodyScan* scan, char c) {
    return c == '&' && scan->mark == '&';
}

/* Elements of one kind have the same names in the same order, so the search goes on behind the one
 * that was found last. */
static int isKnownName(struct soapBodyScan* scan) {
    unsigned at = scan->lastName;
    for (unsigned i = 0; i < scan->nameCount; ++i) {
        at = at + 1 < scan->nameCount ? at + 1 : 0;
        if (scan->nameSizes[at] == scan->nameSize && scan->names[at][0] == scan->name[0] &&
            memcmp(scan->names[at], scan->name, scan->nameSize) == 0) {
            scan->lastName = at;
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
    const struct soapScanRules* rules = scan->rules;
    if (++scan->tagAttributes > kSoapMaxAttributesOfTag) {
        scan->refusal = rules->attributesOfTag;
    } else if (rules->attributes && ++scan->attributes > kSoapMaxAttributes) {
        scan->refusal = rules->attributes;
    } else if (declaresNamespace(scan)) {
        ++scan->tagNamespaces;
        if (++scan->namespaces > kSoapMaxNamespacesInScope) {
            scan->refusal = rules->namespaces;
        }
    } else if (!isKnownName(scan)) {
        if (scan->nameCount == kSoapMaxAttributeNames) {
            scan->refusal = rules->attributeNames;
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
        return refuse(scan, scan->rules->levels);
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
            return startsName(c) ? beginTag(scan) : refuseMarkup(scan);
    }
}

static int afterBang(struct soapBodyScan* scan, char c) {
    scan->nameSize = 0;
    if (c == '[') {
        return IN_CDATA_WORD;
    }
    return c == '-' ? AFTER_DASH : refuse(scan, scan->rules->documentType);
}

static int beginName(struct soapBodyScan* scan, char c) {
    scan->name[0] = c;
    scan->nameSize = 1;
    return startsName(c) ? IN_NAME : refuseMarkup(scan);
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
    const int odd = c == '<' || c == '=' || c == '"' || c == '\'' || isStrayReference(scan, c);
    return odd ? refuseMarkup(scan) : IN_TAG_NAME;
}

static int inName(struct soapBodyScan* scan, char c) {
    if (c == '=' || isBlank(c)) {
        countAttribute(scan);
        return c == '=' ? AFTER_EQUALS : AFTER_NAME;
    }
    if (c == '<' || c == '>' || c == '/' || c == '"' || c == '\'' || isStrayReference(scan, c)) {
        return refuseMarkup(scan);
    }
    if (scan->nameSize == kSoapMaxAttributeNameBytes) {
        return refuse(scan, scan->rules->attributeName);
    }
    scan->name[scan->nameSize++] = c;
    return IN_NAME;
}

static int afterName(struct soapBodyScan* scan, char c) {
    if (isBlank(c)) {
        return AFTER_NAME;
    }
    return c == '=' ? AFTER_EQUALS : refuseMarkup(scan);
}

static int afterEquals(struct soapBodyScan* scan, char c) {
    if (isBlank(c)) {
        return AFTER_EQUALS;
    }
    scan->quote = c;
    return c == '"' || c == '\'' ? IN_VALUE : refuseMarkup(scan);
}

static int beginReference(struct soapBodyScan* scan) {
    scan->outside = scan->state;
    scan->nameSize = 0;
    scan->codePoint = 0;
    return AFTER_AND;
}

static int inText(struct soapBodyScan* scan, char c) {
    if (c == '<') {
        return AFTER_LESS;
    }
    return c == scan->mark ? beginReference(scan) : IN_TEXT;
}

static int inValue(struct soapBodyScan* scan, char c) {
    if (c == '<') {
        return refuseMarkup(scan);
    }
    if (c == scan->mark) {
        return beginReference(scan);
    }
    return c == scan->quote ? IN_TAG : IN_VALUE;
}

static int isDefined(const struct soapBodyScan* scan) {
    static const char* const kDefined[] = {"lt", "gt", "amp", "quot", "apos"};
    for (unsigned i = 0; i < sizeof kDefined / sizeof *kDefined; ++i) {
        if (strlen(kDefined[i]) == scan->nameSize &&
            memcmp(kDefined[i], scan->name, scan->nameSize) == 0) {
            return 1;
        }
    }
    return 0;
}

static int inEntity(struct soapBodyScan* scan, char c) {
    const unsigned longest = sizeof "quot" - 1;
    if (c == ';' && isDefined(scan)) {
        return scan->outside;
    }
    if (c == ';' || (unsigned char)c >= 0x80 || scan->nameSize == longest) {
        return refuse(scan, scan->rules->entity);
    }
    scan->name[scan->nameSize++] = c;
    return IN_ENTITY;
}

static int inNumber(struct soapBodyScan* scan, char c, unsigned base) {
    const uint32_t beyondUnicode = 0x110000;
    const char letter = (char)(c | ('a' - 'A'));
    unsigned digit = base;
    if (c == ';') {
        return scan->rules->allowsCharacter(scan->codePoint) ? scan->outside
                                                             : refuse(scan, scan->rules->character);
    }
    if (c >= '0' && c <= '9') {
        digit = (unsigned)(c - '0');
    } else if (letter >= 'a' && letter <= 'f') {
        digit = (unsigned)(letter - 'a') + 10;
    }
    if (digit >= base) {
        return refuse(scan, scan->rules->entity);
    }
    scan->codePoint = scan->codePoint * base + digit;
    if (scan->codePoint > beyondUnicode) {
        scan->codePoint = beyondUnicode;
    }
    return scan->state;
}

static int inCdataWord(struct soapBodyScan* scan, char c) {
    if (c != kCdataWord[scan->nameSize++]) {
        return refuseMarkup(scan);
    }
    return kCdataWord[scan->nameSize] ? IN_CDATA_WORD : IN_CDATA;
}

/* One byte; gives the state after it. */
static int step(struct soapBodyScan* scan, char c) {
    switch ((enum State)scan->state) {
        case IN_TEXT:
            return inText(scan, c);
        case AFTER_LESS:
            return afterLess(scan, c);
        case AFTER_BANG:
            return afterBang(scan, c);
        case AFTER_DASH:
            return c == '-' ? IN_COMMENT : refuseMarkup(scan);
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
            return c == '>' ? IN_TEXT : refuseMarkup(scan);
        case IN_INSTRUCTION:
            if (isStrayReference(scan, c)) {
                return refuseMarkup(scan); /* nobody needs it here, and readers differ in its end */
            }
            return c == '?' ? INSTRUCTION_END : IN_INSTRUCTION;
        case INSTRUCTION_END:
            return c == '>' ? IN_TEXT : refuseMarkup(scan);
        case IN_END_TAG:
            if (c == '<') {
                return refuseMarkup(scan);
            }
            return c == '>' ? closeElement(scan) : IN_END_TAG;
        case IN_TAG_NAME:
            return inTagName(scan, c);
        case IN_TAG:
            return inTag(scan, c);
        case AFTER_SLASH:
            return c == '>' ? endEmptyElement(scan) : refuseMarkup(scan);
        case IN_NAME:
            return inName(scan, c);
        case AFTER_NAME:
            return afterName(scan, c);
        case AFTER_EQUALS:
            return afterEquals(scan, c);
        case IN_VALUE:
            return inValue(scan, c);
        case AFTER_AND:
            return c == '#' ? AFTER_HASH : inEntity(scan, c);
        case IN_ENTITY:
            return inEntity(scan, c);
        case AFTER_HASH:
            scan->state = c == 'x' ? IN_HEXADECIMAL : IN_DECIMAL;
            return c == 'x' ? IN_HEXADECIMAL : inNumber(scan, c, 10);
        case IN_DECIMAL:
            return inNumber(scan, c, 10);
        case IN_HEXADECIMAL:
            return inNumber(scan, c, 16);
    }
    return refuseMarkup(scan);
}

/* The first of three bytes, or the end. */
static inline const char* find(const char* data, const char* end, char a, char b, char c) {
#ifdef __SSE2__
    const __m128i wantedA = _mm_set1_epi8(a), wantedB = _mm_set1_epi8(b),
                  wantedC = _mm_set1_epi8(c);
    for (; end - data >= (ptrdiff_t)sizeof(__m128i); data += sizeof(__m128i)) {
        const __m128i bytes = _mm_loadu_si128((const __m128i*)(const void*)data);
        const __m128i found = _mm_or_si128(
            _mm_or_si128(_mm_cmpeq_epi8(bytes, wantedA), _mm_cmpeq_epi8(bytes, wantedB)),
            _mm_cmpeq_epi8(bytes, wantedC));
        const unsigned mask = (unsigned)_mm_movemask_epi8(found);
        if (mask) {
            return data + __builtin_ctz(mask);
        }
    }
#endif
    while (data < end && *data != a && *data != b && *data != c) {
        ++data;
    }
    return data;
}

/* The bytes that end a name, or have no place in it. */
static const char kEndsName[256] = {
    ['<'] = 1, ['>'] = 1, ['/'] = 1,  ['='] = 1,  ['"'] = 1, ['\''] = 1,
    ['&'] = 1, [' '] = 1, ['\t'] = 1, ['\r'] = 1, ['\n'] = 1};

static const char* skipName(const char* data, const char* end) {
#ifdef __SSE2__
    /* Many bytes at once that are above a slash and not like '<'; one at which this stops can be
     * part of a name as well. The comparison is one of signed bytes. */
    const __m128i slash = _mm_set1_epi8('/'), mark = _mm_set1_epi8('<');
    const __m128i markBits = _mm_set1_epi8((char)0xFC);
    for (; end - data >= (ptrdiff_t)sizeof(__m128i); data += sizeof(__m128i)) {
        const __m128i bytes = _mm_loadu_si128((const __m128i*)(const void*)data);
        const __m128i plain = _mm_andnot_si128(_mm_cmpeq_epi8(_mm_and_si128(bytes, markBits), mark),
                                               _mm_cmpgt_epi8(bytes, slash));
        const unsigned found = (unsigned)_mm_movemask_epi8(plain) ^ 0xFFFF;
        if (found) {
            data += __builtin_ctz(found);
            break;
        }
    }
#endif
    while (data < end && !kEndsName[(unsigned char)*data]) {
        ++data;
    }
    return data;
}

/* A piece of an attribute's name. The byte behind its longest is left to be refused. */
static const char* takeName(struct soapBodyScan* scan, const char* data, const char* end) {
    const size_t room = kSoapMaxAttributeNameBytes - scan->nameSize;
    size_t size = (size_t)(skipName(data, end) - data);
    size = size < room ? size : room;
    memcpy(scan->name + scan->nameSize, data, size);
    scan->nameSize += (unsigned)size;
    return data + size;
}

/* Passes over attributes that are all there, with one blank at a time before them. */
static const char* passAttributes(struct soapBodyScan* scan, const char* data, const char* end) {
    while (data < end && !scan->refusal) {
        if (*data == ' ') {
            ++data;
            continue;
        }
        const char* equals = startsName(*data) ? skipName(data, end) : data;
        const size_t size = (size_t)(equals - data);
        const int isWhole = end - equals > 2 && equals[0] == '=' &&
                            (equals[1] == '"' || equals[1] == '\'') && size > 0 &&
                            size <= kSoapMaxAttributeNameBytes;
        const char* last = isWhole ? find(equals + 2, end, equals[1], '<', scan->mark) : end;
        if (last == end || *last != equals[1]) {
            break;
        }
        memcpy(scan->name, data, size);
        scan->nameSize = (unsigned)size;
        countAttribute(scan);
        data = last + 1;
    }
    return data;
}

/* Most of a body is texts between tags that are all there. Passes over these; gives where
 * something else begins. */
static const char* passPlain(struct soapBodyScan* scan, const char* data, const char* end) {
    for (;;) {
        const char* tag = data < end && *data == '<' ? data : find(data, end, '<', scan->mark, '<');
        const char* name = tag + 1;
        if (end - tag < 3 || *tag != '<') {
            return tag;
        }
        if (*name == '/') {
            data = find(name + 1, end, '>', '<', '>');
            if (data == end || *data != '>') {
                return tag;
            }
            closeElement(scan);
        } else {
            data = startsName(*name) ? skipName(name, end) : end;
            if (data == end || (*data != '>' && *data != '/' && *data != ' ')) {
                return tag;
            }
            beginTag(scan);
            data = passAttributes(scan, data, end);
            const int isEmpty = end - data > 1 && data[0] == '/' && data[1] == '>';
            if (scan->refusal || data == end || (*data != '>' && !isEmpty)) {
                scan->state = IN_TAG;
                return data;
            }
            data += isEmpty;
            openElement(scan);
            if (scan->refusal) {
                return data;
            }
            if (isEmpty) {
                closeElement(scan);
            }
        }
        ++data;
    }
}

/* Passes over bytes that leave the state as it is: nearly all of a body. */
static const char* skip(struct soapBodyScan* scan, const char* data, const char* end) {
    switch (scan->state) {
        case IN_TEXT:
            return passPlain(scan, data, end);
        case IN_VALUE:
            return find(data, end, scan->quote, '<', scan->mark);
        case IN_TAG_NAME:
            return skipName(data, end);
        case IN_NAME:
            return takeName(scan, data, end);
        case IN_END_TAG:
            return find(data, end, '>', '<', '>');
        case IN_CDATA:
            return find(data, end, ']', ']', ']');
        case IN_COMMENT:
            return find(data, end, '-', '-', '-');
        case IN_INSTRUCTION:
            return find(data, end, '?', scan->mark == '&' ? '&' : '?', '?');
        default:
            return data;
    }
}

const char* soapScan(struct soapBodyScan* scan, const char* data, size_t size) {
    const char* const end = data + size;
    while (!scan->refusal && (data = skip(scan, data, end)) < end && !scan->refusal) {
        scan->state = step(scan, *data++);
    }
    return scan->refusal;
}
