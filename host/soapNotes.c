/* Notes that a LogFormat can write, as %{soap-operation}n; docs/module.md lists them. */
#include "host/modGsoap.h"

#include <apr_strings.h>

#define MICROSECOND 1000

void soapNoteRefusal(request_rec* r, enum SoapRefusal reason) {
    apr_table_setn(r->notes, "soap-outcome", "refused_by_gate");
    apr_table_setn(r->notes, "soap-reason", kSoapRefusalNames[reason]);
}

/* The bytes of the UTF-8 character that the text begins with; 0 when it begins with none, with one
 * that was cut, or with one that could leave the line or the field in which it stands. */
static size_t printable(const char* text) {
    const unsigned char first = (unsigned char)*text;
    size_t length = first >= 0xF0 ? 4 : first >= 0xE0 ? 3 : first >= 0xC2 ? 2 : 1;
    if (first < 0x20 || (first >= 0x7F && first < 0xC2) || first > 0xF4 || first == '"' ||
        first == '\\') {
        return 0;
    }
    for (size_t i = 1; i < length; ++i) {
        if (((unsigned char)text[i] & 0xC0) != 0x80) {
            return 0;
        }
    }
    /* U+0080 to U+009F are control characters too. */
    return first == 0xC2 && (unsigned char)text[1] < 0xA0 ? 0 : length;
}

/* What a client chose, as one line without surprises for whoever reads the log. */
static const char* oneLine(apr_pool_t* pool, const char* text) {
    char* const line = apr_pstrdup(pool, text);
    for (char* at = line; *at;) {
        const size_t length = printable(at);
        if (length == 0) {
            *at = '?';
        }
        at += length > 0 ? length : 1;
    }
    return line;
}

void soapNoteCall(request_rec* r, const struct soapCall* call) {
    apr_table_setn(r->notes, "soap-outcome", kSoapOutcomeNames[call->outcome]);
    if (call->operation) {
        apr_table_setn(r->notes, "soap-operation", call->operation);
    }
    if (call->askedArray) {
        apr_table_setn(r->notes, "soap-array-us",
                       apr_off_t_toa(r->pool, (apr_off_t)(call->arrayTime / MICROSECOND)));
    }
    if (*call->cluster) {
        apr_table_setn(r->notes, "soap-cluster", oneLine(r->pool, call->cluster));
    }
}
